#include "tools/vxfile/page/Colours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace vxfile::page {

namespace {

struct CColour {
    double red;
    double green;
    double blue;
};

/// The scale at nine places. In between, colours are mixed.
constexpr std::array<CColour, 9> kScale = {{{68, 1, 84},
                                            {71, 45, 123},
                                            {59, 82, 139},
                                            {44, 114, 142},
                                            {33, 145, 140},
                                            {40, 174, 128},
                                            {94, 201, 98},
                                            {173, 220, 48},
                                            {253, 231, 37}}};

CColour ColourAt(std::size_t number) {
    const double place = static_cast<double>(number * (kScale.size() - 1)) / (kColours - 1);
    const std::size_t left = std::min(static_cast<std::size_t>(place), kScale.size() - 2);
    const double part = place - static_cast<double>(left);
    const auto mix = [&](double CColour::*channel) {
        return std::round(kScale[left].*channel * (1 - part) + kScale[left + 1].*channel * part);
    };
    return {mix(&CColour::red), mix(&CColour::green), mix(&CColour::blue)};
}

/// Returns how light a colour is, from 0 to 1, as the rules for accessible pages define it.
double LuminanceOf(const CColour& colour) {
    const auto linear = [](double channel) {
        const double part = channel / 255;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
}

/// At this luminance, black and white have the same contrast: 4.58.
constexpr double kMiddle = 0.1791;

std::string RuleOf(std::size_t number) {
    const CColour colour = ColourAt(number);
    std::array<char, 64> rule{};
    static_cast<void>(std::snprintf(rule.data(), rule.size(), ".c%d{background:#%02x%02x%02x;color:%s}",
                                    static_cast<int>(number), static_cast<unsigned>(colour.red),
                                    static_cast<unsigned>(colour.green), static_cast<unsigned>(colour.blue),
                                    LuminanceOf(colour) > kMiddle ? "#000" : "#fff"));
    return rule.data();
}

}  // namespace

std::string ColourRules() {
    std::string rules;
    for (std::size_t number = 0; number < kColours; ++number)
        rules += RuleOf(number) + '\n';
    return rules;
}

std::size_t ColourNumber(double value, double least, double greatest) {
    const double part = greatest > least ? (value / 2 - least / 2) / (greatest / 2 - least / 2) : 0.5;
    const double place = std::clamp(part, 0.0, 1.0) * (kColours - 1);
    return std::isfinite(place) ? static_cast<std::size_t>(std::lround(place)) : kColours / 2;
}

std::string ColourOf(double value, double least, double greatest) {
    return "c" + std::to_string(ColourNumber(value, least, greatest));
}

}  // namespace vxfile::page
