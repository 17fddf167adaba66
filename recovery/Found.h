#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "recovery/Candidates.h"
#include "recovery/Report.h"

namespace vxfileio::recovery {

/// The sample interval of a well that has segments.
struct CWellInterval {
    std::int64_t ticks = 0;
    bool isTold = false;  ///< Its segments leave no other choice.
};

/// One recording of the new file.
struct CFoundRecording {
    std::int64_t position = 0;  ///< Where its header begins in the input, or would.
    CHdrPlace place;
    std::int32_t layout = -1;  ///< Index in `Layouts()`; -1 if the header is lost.
    std::int64_t cutAt = 0;    ///< Cells that end after this are lost.
    bool unfinished = false;   ///< Its writer never set its positions.
    CWellList wellList;
    std::map<std::int32_t, CWellInterval> wells;  ///< Those that have segments, by ID.
};

/// One segment of the new file. There may be millions of them.
struct CFoundSegment {
    std::int64_t position = 0;  ///< Where its header begins in the input.
    std::int64_t data = 0;      ///< Where its samples begin.
    std::int64_t from = 0;      ///< Time of the first sample.
    std::int64_t to = 0;        ///< Time of the last sample.
    std::uint32_t samples = 0;  ///< Those that are kept.
    std::int32_t wellID = 0;
    std::uint32_t recording = 0;  ///< Index of its recording.
    bool namesWell = true;        ///< Its ID can be read.

    std::int64_t End() const { return data + 2 * std::int64_t{samples}; }
};

/// What the new file is made of, in its order.
struct CFound {
    CHdrPlace file;
    std::int32_t fileLayout = -1;  ///< -1 if the file header is lost.
    std::vector<CFoundRecording> recordings;
    std::vector<CFoundSegment> segments;  ///< Those of one recording lie together.
    CRemarks losses;
    CRemarks doubts;
};

}  // namespace vxfileio::recovery
