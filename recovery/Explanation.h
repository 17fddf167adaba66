#pragma once

#include <cstdint>
#include <vector>

#include "recovery/Candidates.h"

/// @file
/// Step 2: the explanation of the input that accounts for the most headers with the fewest assumptions.

namespace vxfileio::recovery {

/// What an explanation costs; `docs/recovery.md` has the reasons. The best one has the lowest sum.
namespace costs {
inline constexpr int kHeader = -240;       ///< A header, times the share of its cells that are undamaged.
inline constexpr int kGap = 100;           ///< Bytes that belong to nothing, plus the binary logarithm of their number.
inline constexpr int kValue = 80;          ///< A value that contradicts the others, or follows from them.
inline constexpr int kPosition = 150;      ///< A position that points elsewhere.
inline constexpr int kShift = 160;         ///< From here on all positions point elsewhere by as much.
inline constexpr int kShiftByGap = 20;     ///< The same by as many bytes as the gap ahead has.
inline constexpr int kVersion = 80;        ///< A recording of another version than the one before.
inline constexpr int kHeaderWithin = 80;   ///< Samples that hold a whole header.
inline constexpr int kLostRecording = 80;  ///< A recording whose header is lost, where there is room for one.
inline constexpr int kForcedRecording = 200;  ///< The same without room.
inline constexpr int kForeign = 100;          ///< After a gap, a segment of other wells, intervals or earlier times.
inline constexpr int kUnconfirmed = 1000;     ///< Nothing confirms where a segment with a damaged header ends.
inline constexpr int kCut = 60;               ///< The input ends within samples.
inline constexpr int kNearlyEqual = 5;        ///< Two explanations this close are both possible.
}  // namespace costs

/// Which value of a segment doesn't come from its cell.
enum class EMade : std::uint8_t {
    None,
    Either,  ///< The times contradict the size; the times may be wrong.
    From,
    To,
    Size,
};

/// A candidate that the explanation uses.
struct CPiece {
    std::uint32_t candidate = 0;
    std::int64_t end = 0;       ///< Offset of the byte after it, with its samples.
    std::int64_t samples = 0;   ///< Segment: those that belong to it, in the input or cut.
    std::int64_t shift = 0;     ///< How far positions point beside what they mean after this piece.
    std::int64_t tick = 0;      ///< Segment: the interval of its well, if that is known.
    std::int64_t ownShift = 0;  ///< The same by its own position, if `hasOwnShift`.
    EMade made = EMade::None;
    bool hasOwnShift = false;
    bool lostRecording = false;  ///< A recording whose header is lost begins ahead of this segment.
    bool isCut = false;          ///< The input ends within its samples.
    bool isAmbiguous = false;    ///< What lies ahead of it could as well be something else.
};

/// Returns the pieces of the best explanation in the order of the input. Headers of a raw data file that was stored as
/// samples are left out of `candidates`.
std::vector<CPiece> Explain(CCandidates& candidates, std::int64_t size, const CReach& reach);

/// Leaves out what lies inside a raw data file that was stored as samples: its own headers count from its own
/// beginning, and after it the headers around it go on, or its samples end by the header of their segment.
void LeaveOutFilesWithin(CCandidates& candidates, std::int64_t size);

}  // namespace vxfileio::recovery
