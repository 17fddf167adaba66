#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include "vxfileio/rawdata/Layout.h"

/// @file
/// How the times, the sample interval, the size and the place of a segment depend on one another. A segment has one
/// sample at its first time and one more for each whole interval up to its last time: (TimeTo - TimeFrom) / interval
/// + 1.
///
/// Nothing here overflows, even with the numbers of a damaged file.

namespace vxfileio::rawdata {

inline constexpr std::int64_t kSampleBytes = sizeof(std::uint16_t);

/// The most samples of one segment: readers hold its size in 32 bits.
inline constexpr std::int64_t kMostSamples = std::numeric_limits<std::uint32_t>::max();

/// Returns how much later `to` is. Requires: to >= from. The result may be beyond the signed range.
constexpr std::uint64_t Distance(std::int64_t from, std::int64_t to) noexcept {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

/// Returns the time from the first sample to the last, within [0, 2^63). Nothing if the times are reversed or further
/// apart, which no writer accepts.
constexpr std::optional<std::int64_t> SpanOf(std::int64_t from, std::int64_t to) noexcept {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    if (to < from || Distance(from, to) > kMost) return std::nullopt;
    return static_cast<std::int64_t>(Distance(from, to));
}

/// Returns the number of samples that these times make at this interval, within [1, 2^63]. Nothing if the times have no
/// span or the interval isn't above 0.
constexpr std::optional<std::uint64_t> SampleCount(std::int64_t from, std::int64_t to, std::int64_t tick) noexcept {
    const auto span = SpanOf(from, to);
    if (!span || tick <= 0) return std::nullopt;
    return static_cast<std::uint64_t>(*span / tick) + 1;
}

/// Returns whether `Size` is the number of samples that the times of a segment make at this interval.
constexpr bool GoesWith(const CSegmentHdr& header, std::int64_t tick) noexcept {
    const auto count = SampleCount(header.TimeFrom, header.TimeTo, tick);
    return count && header.Size > 0 && *count == static_cast<std::uint64_t>(header.Size);
}

/// Sample intervals, both ends included; empty if atLeast > atMost.
struct CTickRange {
    std::int64_t atLeast = 1;
    std::int64_t atMost = std::numeric_limits<std::int64_t>::max();

    constexpr bool IsEmpty() const noexcept { return atLeast > atMost; }
    constexpr bool IsOpen() const noexcept { return atMost == std::numeric_limits<std::int64_t>::max(); }
    constexpr bool Has(std::int64_t tick) const noexcept { return tick >= atLeast && tick <= atMost; }
};

/// Returns all intervals at which these times make this number of samples. The range has no upper end for a single
/// sample.
constexpr CTickRange TicksOf(std::int64_t from, std::int64_t to, std::int64_t samples) noexcept {
    constexpr CTickRange kNone{.atLeast = 1, .atMost = 0};
    const auto span = SpanOf(from, to);
    if (!span || samples < 1) return kNone;
    if (samples > 1) return {.atLeast = *span / samples + 1, .atMost = *span / (samples - 1)};
    return *span == std::numeric_limits<std::int64_t>::max() ? kNone : CTickRange{.atLeast = *span + 1};
}

/// Returns whether there is any interval at which the times of a segment make as many samples as `Size`.
constexpr bool IsConsistent(const CSegmentHdr& header) noexcept {
    return !TicksOf(header.TimeFrom, header.TimeTo, header.Size).IsEmpty();
}

/// Returns the time that is a number of intervals after another, or before it if `intervals` is negative. Nothing if
/// that is beyond 64 bits, or if the interval isn't above 0.
constexpr std::optional<std::int64_t> TimeAfter(std::int64_t time, std::int64_t intervals, std::int64_t tick) noexcept {
    using CLimits = std::numeric_limits<std::int64_t>;
    if (intervals == 0) return time;
    if (tick <= 0 || intervals == CLimits::min()) return std::nullopt;
    if (tick > CLimits::max() / (intervals < 0 ? -intervals : intervals)) return std::nullopt;
    const std::int64_t length = tick * intervals;
    if (length > 0 ? time > CLimits::max() - length : time < CLimits::min() - length) return std::nullopt;
    return time + length;
}

/// Returns the time from one sample of a segment to the next, at least 1: `tick`, the interval of its well, or else the
/// longest that its times allow.
constexpr std::int64_t IntervalOf(std::int64_t from, std::int64_t to, std::uint32_t samples,
                                  std::int64_t tick) noexcept {
    if (tick > 0) return tick;
    const auto span = SpanOf(from, to);
    return span && samples > 1 ? std::max<std::int64_t>(*span / (samples - 1), 1) : 1;
}

/// Returns the number of samples as every reader takes it: the low 32 bits of `Size`.
constexpr std::uint32_t SamplesOf(const CSegmentHdr& header) noexcept {
    return static_cast<std::uint32_t>(header.Size);
}

/// Returns the offset of the first sample of a segment whose header is at `position`.
constexpr std::int64_t DataOf(const CLayout& layout, std::int64_t position) noexcept {
    return position + static_cast<std::int64_t>(layout.segment.size);
}

/// Returns the offset of the byte after the last sample; the file may end earlier. Requires: the header is in a file.
constexpr std::int64_t EndOf(const CLayout& layout, std::int64_t position, const CSegmentHdr& header) noexcept {
    return DataOf(layout, position) + SamplesOf(header) * kSampleBytes;
}

/// The samples of a cut file may extend this far beyond its end, or as far as the file is long; missing ones are
/// delivered as zeros. A damaged size must not cost more memory than that.
inline constexpr std::int64_t kMostMissingBytes = std::int64_t{16} << 20;

/// Returns whether this many samples at this position are credible. Calls `fileSize` for the size of the file only if
/// there are many.
constexpr bool IsCredible(std::int64_t position, std::uint32_t samples, auto fileSize) noexcept {
    const std::int64_t bytes = samples * kSampleBytes;
    if (bytes <= kMostMissingBytes) return true;
    const std::int64_t end = fileSize();
    return bytes - std::max(kMostMissingBytes, end) <= end - position;
}

}  // namespace vxfileio::rawdata
