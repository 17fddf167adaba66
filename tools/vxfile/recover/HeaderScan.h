#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "tools/vxfile/recover/Evidence.h"
#include "tools/vxfile/recover/HeaderProbe.h"

namespace vxfile {

/// Searches bytes of which nobody knows what they are for the next header.
///
/// Any bytes may be samples, and samples may hold anything, a raw data file too. So a header must be whole to the last
/// byte here, and something must speak for its place: its position leads right behind its own samples, or it leads as
/// far beside them as that of the one that follows; something that was believed before leads to it; or it goes on with
/// a well, or ends a recording, and what follows agrees. What follows the header of a file within the file is passed
/// over.
class CHeaderScan {
 public:
    /// Probe and evidence stay the caller's and outlive this. `reach` is told how far the search is.
    CHeaderScan(const CHeaderProbe& probe, std::int32_t version, const CEvidence& evidence,
                std::function<void(std::int64_t)> reach)
        : m_probe(probe), m_version(version), m_evidence(evidence), m_reach(std::move(reach)) {}

    /// Returns where the next header stands, at `from` or behind; the end of the file if there is none.
    std::int64_t Next(std::int64_t from) const;

    /// Returns where a header stands from `from` on that should stand at `end`: bytes were taken out between what ends
    /// there and it, so that it leads at least as much too far. `shift` is how far all ahead of that lead beside their
    /// ends.
    std::optional<std::int64_t> NextAhead(std::int64_t from, std::int64_t end, std::int64_t shift) const;

    /// Returns where a header of a raw data file stands ahead of any other header; 0 if there is none.
    std::int64_t FirstFile() const;

 private:
    bool IsAhead(std::int64_t position, std::int64_t shift) const;
    bool IsFileHdr(std::int64_t position) const;
    std::int64_t NextBeginning(std::int64_t from) const;
    bool IsHeader(std::int64_t position) const;
    bool IsSegmentHdr(std::int64_t position) const;
    bool IsShifted(const CSegmentProbe& probe) const;
    bool IsRecordingHdr(std::int64_t position) const;
    std::optional<std::int64_t> EndOfFileWithin(std::int64_t position) const;

    const CHeaderProbe& m_probe;
    std::int32_t m_version;
    const CEvidence& m_evidence;
    std::function<void(std::int64_t)> m_reach;
};

}  // namespace vxfile
