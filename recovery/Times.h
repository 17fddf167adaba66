#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>

/// @file
/// Times, intervals and numbers of samples, without a step out of range.

namespace vxfileio::recovery {

/// A segment has no more samples than this.
inline constexpr std::int64_t kMostSamples = std::numeric_limits<std::uint32_t>::max();

/// Intervals, both ends included.
struct CIntervals {
    std::int64_t atLeast = 1;
    std::int64_t atMost = std::numeric_limits<std::int64_t>::max();

    constexpr bool Has(std::int64_t interval) const { return interval >= atLeast && interval <= atMost; }
    constexpr bool None() const { return atLeast > atMost; }
    constexpr bool IsOpen() const { return atMost == std::numeric_limits<std::int64_t>::max(); }
};

/// Returns the time from the first sample to the last, or nothing if the times are no segment's.
constexpr std::optional<std::int64_t> SpanOf(std::int64_t from, std::int64_t to) {
    if (to < from) return std::nullopt;
    const auto span = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
    if (span >= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
    return static_cast<std::int64_t>(span);
}

/// Returns the intervals with which these times hold so many samples.
constexpr CIntervals IntervalsOf(std::int64_t from, std::int64_t to, std::int64_t samples) {
    const auto span = SpanOf(from, to);
    if (!span || samples < 1) return {.atMost = 0};
    if (samples == 1) return {.atLeast = *span + 1};
    return {.atLeast = *span / samples + 1, .atMost = *span / (samples - 1)};
}

/// Returns the number of samples of these times, or nothing if no segment has it.
constexpr std::optional<std::int64_t> SamplesOf(std::int64_t from, std::int64_t to, std::int64_t interval) {
    const auto span = SpanOf(from, to);
    if (!span || interval <= 0 || *span / interval >= kMostSamples) return std::nullopt;
    return *span / interval + 1;
}

/// Returns the time so many intervals after another, or before it if `count` is negative; nothing if there is none.
constexpr std::optional<std::int64_t> TimeAfter(std::int64_t time, std::int64_t count, std::int64_t interval) {
    using CLimits = std::numeric_limits<std::int64_t>;
    if (count == 0) return time;
    const std::int64_t distance = count < 0 ? -count : count;
    if (interval <= 0 || interval > CLimits::max() / distance) return std::nullopt;
    const std::int64_t length = interval * count;
    if (length > 0 ? time > CLimits::max() - length : time < CLimits::min() - length) return std::nullopt;
    return time + length;
}

}  // namespace vxfileio::recovery
