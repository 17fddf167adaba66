#pragma once

#include <algorithm>
#include <cstdint>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::access {

/// Returns how many of the samples from an offset on aren't in a file of this size, or only by half.
constexpr std::uint64_t MissingSamples(std::int64_t offset, std::uint64_t samples, std::int64_t fileSize) noexcept {
    const std::int64_t there = std::max<std::int64_t>(fileSize - offset, 0) / rawdata::kSampleBytes;
    return samples - std::min(samples, static_cast<std::uint64_t>(there));
}

}  // namespace vxfileio::access
