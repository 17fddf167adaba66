#include "tools/vxfile/page/Packed.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace vxfile::page {

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kGap = "--";
constexpr double kLevels = 4095.0;

void Append(std::string& text, double level) {
    const auto number = static_cast<std::uint32_t>(std::clamp(level, 0.0, kLevels));
    text += kAlphabet[number >> 6U];
    text += kAlphabet[number & 63U];
}

}  // namespace

CJson PackedCurve(std::span<const double> values) {
    bool isEmpty = true;
    double least = 0.0;
    double greatest = 0.0;
    for (const double value : values) {
        if (!std::isfinite(value)) continue;
        least = isEmpty ? value : std::min(least, value);
        greatest = isEmpty ? value : std::max(greatest, value);
        isEmpty = false;
    }
    if (isEmpty) return nullptr;
    const double scale = greatest > least ? kLevels / (greatest - least) : 0.0;
    std::string text;
    text.reserve(2 * values.size());
    for (const double value : values) {
        if (std::isfinite(value)) {
            Append(text, std::round((value - least) * scale));
        } else {
            text += kGap;
        }
    }
    return {{"lo", least}, {"hi", greatest}, {"d", std::move(text)}};
}

CJson PackedTrace(const CTrace& trace) {
    CTrace::CStep all;
    for (const CTrace::CStep& step : trace.Steps()) {
        all.least = std::min(all.least, step.least);
        all.greatest = std::max(all.greatest, step.greatest);
    }
    if (all.IsGap()) return nullptr;
    const double scale = all.greatest > all.least ? kLevels / (all.greatest - all.least) : 0.0;
    std::string text;
    text.reserve(4 * trace.Steps().size());
    for (const CTrace::CStep& step : trace.Steps()) {
        if (step.IsGap()) {
            text.append(kGap).append(kGap);
        } else {
            Append(text, std::floor((step.least - all.least) * scale));
            Append(text, std::ceil((step.greatest - all.least) * scale));
        }
    }
    const bool hasScale = std::isfinite(trace.Scale().unitsPerAD) && trace.Scale().unitsPerAD > 0.0;
    const double unit = hasScale ? trace.Scale().unitsPerAD : 1.0;
    const double zero = hasScale ? trace.Scale().zero : 0.0;
    return {{"lo", (all.least - zero) * unit},
            {"hi", (all.greatest - zero) * unit},
            {"unit", hasScale ? "units" : "AD steps"},
            {"begin", trace.Begin()},
            {"step", trace.StepTime()},
            {"d", std::move(text)}};
}

}  // namespace vxfile::page
