#include "tools/vxfile/page/PackedCurves.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace vxfile::page {

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint32_t kLevels = 4095;

/// Stores a number, which takes two characters. Returns the end of it.
char* Put(char* to, std::uint32_t level) {
    level = std::min(level, kLevels);
    *to++ = kAlphabet[level >> 6U];
    *to++ = kAlphabet[level & 63U];
    return to;
}

/// Stores a number that is missing.
char* PutGap(char* to) { return std::fill_n(to, 2, '-'); }

}  // namespace

/// Returns where to store this many characters more.
char* CPackedCurves::Append(std::size_t characters) {
    m_text.resize(m_text.size() + characters);
    return m_text.data() + m_text.size() - characters;
}

CJson CPackedCurves::Add(std::span<const double> values) {
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
    const std::size_t at = m_text.size();
    char* to = Append(2 * values.size());
    for (const double value : values)
        to = std::isfinite(value) ? Put(to, static_cast<std::uint32_t>(std::lround((value - least) * scale)))
                                  : PutGap(to);
    return {{"lo", least}, {"hi", greatest}, {"at", at}, {"n", 2 * values.size()}};
}

CJson CPackedCurves::Add(const CTrace& trace) {
    CTrace::CStep all;
    for (const CTrace::CStep& step : trace.Steps()) {
        all.least = std::min(all.least, step.least);
        all.greatest = std::max(all.greatest, step.greatest);
    }
    if (all.IsGap()) return nullptr;
    const auto above = [&](std::uint16_t sample) { return static_cast<std::uint32_t>(sample - all.least); };
    const std::uint32_t range = std::max(1U, above(all.greatest));
    const std::size_t at = m_text.size();
    const std::size_t count = 4 * trace.Steps().size();
    char* to = Append(count);
    for (const CTrace::CStep& step : trace.Steps()) {
        to = step.IsGap() ? PutGap(to) : Put(to, above(step.least) * kLevels / range);
        to = step.IsGap() ? PutGap(to) : Put(to, (above(step.greatest) * kLevels + range - 1) / range);
    }
    const bool hasScale = std::isfinite(trace.Scale().unitsPerAD) && trace.Scale().unitsPerAD > 0.0;
    const double unit = hasScale ? trace.Scale().unitsPerAD : 1.0;
    const double zero = hasScale ? trace.Scale().zero : 0.0;
    return {{"lo", (all.least - zero) * unit},
            {"hi", (all.greatest - zero) * unit},
            {"unit", hasScale ? "units" : "AD steps"},
            {"begin", trace.Begin()},
            {"step", trace.StepTime()},
            {"at", at},
            {"n", count}};
}

}  // namespace vxfile::page
