#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>

#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfile {

/// What whole cells have told by now of what is to come: where headers should stand, and which wells, intervals and
/// times the segments of the recording at hand should have.
class CEvidence {
 public:
    /// A whole cell says that a recording header stands there.
    void PromiseRecording(std::int64_t position) { m_recordings.insert(position); }

    /// Returns the first position, at `from` or behind, that a recording header was promised for.
    std::optional<std::int64_t> PromisedBehind(std::int64_t from) const;

    /// What the segment before says of the next one, if its cell is whole and a segment is what came last.
    void SetNext(std::optional<std::int64_t> position) { m_next = position; }
    std::optional<std::int64_t> Next() const { return m_next; }

    bool IsRecordingPromised(std::int64_t position) const { return m_recordings.contains(position); }
    /// The same of any header.
    bool IsPromised(std::int64_t position) const { return IsRecordingPromised(position) || m_next == position; }

    /// From here on wells, intervals and times are those of this recording. `knowsWells` tells whether its list of
    /// wells is whole.
    void BeginRecording(const CRawDataRecordingHdr& header, bool knowsWells);

    /// Learns from a segment that is whole.
    void Tally(const vxfileio::rawdata::CSegmentHdr& header);

    /// Returns the interval that the recording header gives a well, or that its segments so far tell; 0 if there is
    /// none.
    std::int64_t TickOf(std::int32_t wellID) const;

    /// Tells whether nothing speaks against a segment being one of this recording: its well is listed, if there is a
    /// list, its times go with the interval, if it is known, and they come behind those that its well has by now.
    bool Belongs(const vxfileio::rawdata::CSegmentHdr& header) const;

    /// Tells whether a segment is one that this recording can be expected to have next.
    bool IsExpected(const vxfileio::rawdata::CSegmentHdr& header) const {
        return TickOf(header.ID) > 0 && Belongs(header);
    }

 private:
    static constexpr std::int64_t kNoMost = std::numeric_limits<std::int64_t>::max();

    /// What the segments of a well have told by now.
    struct CSeenWell {
        std::int64_t to = 0;            ///< The last time.
        std::int64_t atLeast = 1;       ///< A smaller interval would make more samples of some segment's times.
        std::int64_t atMost = kNoMost;  ///< A larger one would make fewer.
    };

    std::set<std::int64_t> m_recordings;
    std::optional<std::int64_t> m_next;
    std::map<std::int32_t, std::int64_t> m_ticks;  ///< Of the wells that the recording header lists.
    bool m_knowsWells = false;
    std::map<std::int32_t, CSeenWell> m_seen;
};

}  // namespace vxfile
