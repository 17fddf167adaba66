#include "tools/vxfile/page/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace vxfile::page {

std::string ExactText(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::string RoundedText(double value, int decimals) {
    constexpr double kLongest = 1e9;
    std::array<char, 48> text{};
    char* const end = text.data() + text.size();
    if (std::abs(value) < kLongest)
        return {text.data(), std::to_chars(text.data(), end, value, std::chars_format::fixed, decimals).ptr};
    return {text.data(), std::to_chars(text.data(), end, value, std::chars_format::general, 3).ptr};
}

int DecimalsFor(double greatest) {
    constexpr int kMost = 6;
    if (!std::isfinite(greatest) || greatest == 0.0) return 2;
    return std::clamp(2 - static_cast<int>(std::floor(std::log10(std::abs(greatest)))), 0, kMost);
}

std::vector<double> MarksBetween(double least, double greatest) {
    constexpr double kFewest = 4.0;
    const double span = greatest - least;
    if (!(span > 0.0) || !std::isfinite(span)) return {least};
    const double decade = std::pow(10.0, std::floor(std::log10(span / kFewest)));
    double step = decade;
    for (const double factor : {2.0, 5.0}) {
        if (span / (factor * decade) >= kFewest) step = factor * decade;
    }
    constexpr int kMost = 16;
    std::vector<double> marks;
    // Counted, since numbers beyond 2^53 don't change if 1 is added.
    for (int i = 0; i <= kMost; ++i) {
        const double mark = (std::floor(least / step) + i) * step;
        if (mark >= greatest + step) return marks;
        marks.push_back(mark);
    }
    return {least, greatest};
}

}  // namespace vxfile::page
