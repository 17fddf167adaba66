#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfile {

/// Samples of one segment: all that the file has, or some of them.
struct CSegmentSamples {
    std::int32_t well = 0;
    std::int64_t timeFrom = 0;                    ///< Time of the first sample.
    std::int64_t interval = 1;                    ///< Time from one sample to the next, above 0.
    std::span<const std::uint16_t> samples = {};  ///< At least one; valid during the call.
};

/// Gets the samples of a raw data file while the file is checked, so that it is read only once. Samples come in the
/// order of the recordings and of the chains of their segments. Those beyond the end of a cut file don't come.
class CSampleReceiver {
 public:
    CSampleReceiver() = default;
    virtual ~CSampleReceiver() = default;
    CSampleReceiver(const CSampleReceiver&) = delete;
    CSampleReceiver& operator=(const CSampleReceiver&) = delete;

    /// Called before the samples of each recording. Recordings count from 0 in file order. `wells` has each well that
    /// the header lists once, with its first entry. `UnitsPerAD` is NaN if the header has no number for it or for
    /// `ADZero`.
    virtual void Begin(std::size_t recording, const std::vector<CRawDataChannelInfo>& wells) = 0;
    virtual void Take(const CSegmentSamples& samples) = 0;
    /// Called if samples of the recording can't be read: because its chain is broken, or by the system.
    virtual void Miss() = 0;
};

}  // namespace vxfile
