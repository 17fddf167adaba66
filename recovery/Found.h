#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "recovery/Explanation.h"
#include "recovery/Report.h"

namespace vxfileio::recovery {

/// The sample interval of a well that has segments.
struct CWellInterval {
    std::int64_t ticks = 0;
    bool isKnown = false;  ///< Its segments determine it.
};

/// One recording of the new file.
struct CFoundRecording {
    CCandidate header;  ///< Without a form if it is lost: then it has only the offset where it would begin.
    CWellList wellList;
    std::map<std::int32_t, CWellInterval> wells;  ///< The wells that have segments, by ID.

    /// Returns whether its positions were never set.
    bool IsUnfinished() const { return header.next == rawdata::kUnset; }
};

/// One segment of the new file. There may be millions of them.
struct CFoundSegment {
    std::int64_t position = 0;  ///< Offset of its header in the input.
    std::int64_t data = 0;      ///< Offset of its samples.
    std::int64_t from = 0;      ///< Time of the first sample.
    std::int64_t to = 0;        ///< Time of the last sample.
    std::uint32_t samples = 0;  ///< Number of samples kept.
    std::int32_t wellID = 0;
    std::uint32_t recording = 0;  ///< Index of its recording.
    bool namesWell = true;        ///< Its ID can be read.
    EMade made = EMade::None;     ///< The time that follows from the other one and the interval, if any.

    std::int64_t End() const { return data + 2 * std::int64_t{samples}; }
};

/// The contents of the new file, in its order.
struct CFound {
    CCandidate file;  ///< Without a form if the file header is lost.
    std::vector<CFoundRecording> recordings;
    std::vector<CFoundSegment> segments;  ///< The segments of one recording are contiguous.
    CRemarks losses;
    CRemarks doubts;
    bool isStraight = true;  ///< Each position points at what comes next in the input.
};

}  // namespace vxfileio::recovery
