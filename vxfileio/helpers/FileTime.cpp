#include "vxfileio/helpers/FileTime.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <ratio>
#include <string_view>

#include "vxfileio/helpers/NumberText.h"

namespace vxfileio::helpers {

namespace {

using CFileTimeUnits = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

/// Where file times count from.
constexpr auto kEpoch = std::chrono::sys_days(std::chrono::January / 1 / 1601);

/// Appends a number with leading zeros up to `width`, and the text after it.
void AppendPadded(std::string& text, std::int64_t value, std::size_t width, std::string_view after) {
    const CNumberText digits(value);
    text.append(width - std::min(width, digits.View().size()), '0').append(digits.View()).append(after);
}

}  // namespace

std::uint64_t GetCurrentFileTime() {
    // Nanoseconds would not reach back to 1601, so the clock is brought to our units first.
    const auto now = std::chrono::floor<CFileTimeUnits>(std::chrono::system_clock::now());
    return static_cast<std::uint64_t>(CFileTimeUnits(now - kEpoch).count());
}

std::string FileTimeToText(std::uint64_t fileTime) {
    using std::chrono::floor;
    constexpr std::uint64_t kLast = std::numeric_limits<std::int64_t>::max();
    const CFileTimeUnits sinceEpoch(static_cast<std::int64_t>(std::min(fileTime, kLast)));
    const auto days = floor<std::chrono::days>(sinceEpoch);
    const std::chrono::year_month_day date(kEpoch + days);
    const std::chrono::hh_mm_ss time(floor<std::chrono::seconds>(sinceEpoch - days));
    std::string text;
    AppendPadded(text, static_cast<int>(date.year()), 4, "-");
    AppendPadded(text, static_cast<unsigned>(date.month()), 2, "-");
    AppendPadded(text, static_cast<unsigned>(date.day()), 2, " ");
    AppendPadded(text, time.hours().count(), 2, ":");
    AppendPadded(text, time.minutes().count(), 2, ":");
    AppendPadded(text, time.seconds().count(), 2, "");
    return text;
}

}  // namespace vxfileio::helpers
