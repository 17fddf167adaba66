#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
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
    /// The recording lists the well without a sample interval.
    void NoteNoInterval(const CSegmentAt& segment, std::size_t recording);
    /// Call it once before the first recording.
    void NoteStart();
    /// `end` is where a segment or a header of a finished recording ends, and its chain doesn't go on.
    void NoteEnd(std::int64_t end, std::size_t recording);
    /// @}

    /// Returns true if the chain of another recording leads to this segment, too. Segments between the header of their
    /// own recording and the next header in the file cost nothing; of the others, the first of each recording is looked
    /// for.
    [[nodiscard]] bool IsShared(const CSegmentAt& segment, std::size_t recording);

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

    /// The stretch of the file from the header of a recording to the next header after it.
    struct CZone {
        std::size_t recording = kFileHeader;
        std::int64_t end = 0;
        bool isLookedInto = false;  ///< A segment outside of it was looked for already.
    };

    static constexpr std::size_t kFileHeader = std::numeric_limits<std::size_t>::max();  ///< No recording's number.

    void Enter(std::size_t recording);
    bool LeadsTo(const CRecordingAt& recording, std::int64_t position);
    std::string NameOfPlace(std::size_t recording) const;
    void Note(CTally& tally, const CSegmentAt& segment, std::size_t recording) const;
    std::vector<CBehind> Unreached() const;

    const CRawScan& m_scan;
    CTally m_times;     ///< Of segments whose times don't go with Size.
    CTally m_unlisted;  ///< Of segments whose wells their recordings don't list.
    CTally m_noInterval;
    std::vector<std::int64_t> m_starts;  ///< Where recordings begin, in the order of the file.
    CZone m_zone;
    CSegmentBudget m_budget{m_scan};
    std::vector<CBehind> m_behind;
    bool m_closed = false;
};

}  // namespace vxfile
