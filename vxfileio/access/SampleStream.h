#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "vxfileio/access/SampleSelection.h"

namespace vxfileio::access {

/// Selected samples of one segment: all of them, or those that fit into the block.
struct CSamplePart {
    std::int32_t wellID = 0;
    std::int64_t timeFrom = 0;                    ///< Time of the first sample.
    std::int64_t interval = 1;                    ///< Time from one sample to the next.
    std::int64_t offset = 0;                      ///< Of the first sample in the file.
    std::span<const std::uint16_t> samples = {};  ///< Valid during the call.
};

/// Delivers the samples of a selection in the order of the file, through one block of 64 KiB: for programs that keep
/// no samples. `CSampleSelection::Read` is for those that do. Calls `take` for each part. Throws as
/// `CSampleSelection::Read` does if samples can't be read.
void StreamSamples(const CSampleSelection& selection, const std::function<void(const CSamplePart&)>& take);

}  // namespace vxfileio::access
