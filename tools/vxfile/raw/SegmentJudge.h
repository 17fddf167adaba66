#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vxfile/raw/RawScan.h"

namespace vxfile {

/// Watches a walk for what gives wrong samples, or too few of them, without breaking the chain. What can be given all
/// the same is noted, for a sentence beside it. A header that agrees with itself costs no look at the file.
class CSegmentJudge {
 public:
    /// The scan outlives this object.
    explicit CSegmentJudge(const CRawScan& scan) : m_scan(scan) {}

    /// Tells whether the samples are what the header says they are: nothing speaks against `Size`, or if the times do,
    /// what stands behind speaks for it, and the times are noted. `tick` is the interval of the well; 0 if that isn't
    /// known. `recording` counts from 0, here and below.
    bool Admits(const CSegmentAt& segment, std::int64_t tick, std::size_t recording);

    /// @name Noting
    /// @{
    void NoteUnlisted(const CSegmentAt& segment, std::size_t recording);
    /// `end` is where a segment or a header of a finished recording ends, and its chain doesn't go on.
    void NoteEnd(std::int64_t end, std::size_t recording);
    /// @}

    /// Whoever goes through a file once more begins anew, or notes no more.
    void Clear();
    void Close() { m_closed = true; }

    /// Returns a sentence for each thing that was noted.
    std::vector<std::string> Doubts() const;

 private:
    /// How many segments have something in common, and the first of them in words.
    struct CTally {
        std::size_t count = 0;
        std::string first;
    };

    /// What stands where a recording's chain doesn't go on.
    struct CBehind {
        std::int64_t position = 0;
        std::size_t recording = 0;
        bool isReached = false;
    };

    void Note(CTally& tally, const CSegmentAt& segment, std::size_t recording) const;
    std::vector<CBehind> Unreached() const;

    const CRawScan& m_scan;
    CTally m_times;     ///< Of segments whose times don't go with Size.
    CTally m_unlisted;  ///< Of segments whose wells their recordings don't list.
    std::vector<CBehind> m_behind;
    bool m_closed = false;
};

}  // namespace vxfile
