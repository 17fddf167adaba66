#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "tools/vxfile/recover/HeaderProbe.h"

namespace vxfile {

/// Searches bytes of which nobody knows what they are for the next header.
///
/// Any bytes may be samples, and samples may hold anything, a raw data file too. So a header must be whole to the last
/// byte here, and it must know where it stands: its position leads right behind its own samples, or something that was
/// believed before leads to it. What follows the header of a file within the file is passed over.
class CHeaderScan {
 public:
    /// `isPromised` tells whether a position that was believed leads there. `reach` is told how far the search is.
    CHeaderScan(const CHeaderProbe& probe, std::int32_t version, std::function<bool(std::int64_t)> isPromised,
                std::function<void(std::int64_t)> reach)
        : m_probe(probe), m_version(version), m_isPromised(std::move(isPromised)), m_reach(std::move(reach)) {}

    /// Returns where the next header stands, at `from` or behind; the end of the file if there is none.
    std::int64_t Next(std::int64_t from) const;

 private:
    std::int64_t NextBeginning(std::int64_t from) const;
    bool IsHeader(std::int64_t position) const;
    bool IsSegmentHdr(std::int64_t position) const;
    bool IsRecordingHdr(std::int64_t position) const;
    std::optional<std::int64_t> EndOfFileWithin(std::int64_t position) const;

    const CHeaderProbe& m_probe;
    std::int32_t m_version;
    std::function<bool(std::int64_t)> m_isPromised;
    std::function<void(std::int64_t)> m_reach;
};

}  // namespace vxfile
