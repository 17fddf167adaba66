#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "verify/raw/RawScan.h"

namespace vxfile {

/// Finds headers that would yield wrong or too few samples although the chain is intact. Notes doubts about samples
/// that can be delivered anyway. Reads the file only if a header contradicts itself.
class CSegmentJudge {
 public:
    /// The scan must outlive this object.
    explicit CSegmentJudge(const CRawScan& scan) : m_scan(scan) {}

    /// Returns true if `Size` is right: nothing contradicts it, or only the times do, while what follows the samples
    /// confirms it. Notes such times. `tick` is the interval of the well, 0 if unknown. `recording` counts from 0, here
    /// and below.
    bool Admits(const CSegmentAt& segment, std::int64_t tick, std::size_t recording);

    /// @name Noting
    /// @{
    void NoteUnlisted(const CSegmentAt& segment, std::size_t recording);
    /// The recording lists the well without a sample interval.
    void NoteNoInterval(const CSegmentAt& segment, std::size_t recording);
    /// Call it once before the first recording.
    void NoteStart();
    /// `end` is the end of a segment or header of a finished recording whose chain doesn't continue there.
    void NoteEnd(std::int64_t end, std::size_t recording);
    /// @}

    /// Returns true if the chain of another recording leads to this segment, too. Segments between the header of their
    /// own recording and the next header in the file cost nothing. Of the others, only the first of each recording is
    /// checked.
    [[nodiscard]] bool IsShared(const CSegmentAt& segment, std::size_t recording);

    /// Before another walk: `Clear` removes all notes, `Close` makes this ignore further ones.
    void Clear();
    void Close() { m_closed = true; }

    /// Returns a sentence for each thing that was noted.
    std::vector<std::string> Doubts() const;

 private:
    /// The number of segments of one kind, and a description of the first.
    struct CTally {
        std::size_t count = 0;
        std::string first;
    };

    /// A header at the end of a segment or header whose chain doesn't continue there.
    struct CFollower {
        std::int64_t position = 0;
        std::size_t recording = 0;
        bool isReached = false;
    };

    /// The range of the file from the header of a recording to the next recording header.
    struct CZone {
        std::size_t recording = kFileHeader;
        std::int64_t end = 0;
        bool isLookedInto = false;  ///< A segment outside of it was already checked.
    };

    static constexpr std::size_t kFileHeader = std::numeric_limits<std::size_t>::max();  ///< Means the file header.

    void Enter(std::size_t recording);
    bool LeadsTo(const CRecordingAt& recording, std::int64_t position);
    std::string NameOfPlace(std::size_t recording) const;
    void Note(CTally& tally, const CSegmentAt& segment, std::size_t recording) const;
    std::vector<CFollower> Unreached() const;

    const CRawScan& m_scan;
    CTally m_times;     ///< Segments whose times contradict Size.
    CTally m_unlisted;  ///< Segments of wells that their recordings don't list.
    CTally m_noInterval;
    std::vector<std::int64_t> m_starts;  ///< The positions of the recordings, in ascending order.
    CZone m_zone;
    CSegmentBudget m_budget{m_scan};
    std::vector<CFollower> m_followers;
    bool m_closed = false;
};

}  // namespace vxfile
