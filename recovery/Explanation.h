#pragma once

#include <cstdint>
#include <vector>

#include "recovery/Candidates.h"

/// @file
/// Step 2: finds the explanation of the input that accounts for the most headers with the fewest assumptions.

namespace vxfileio::recovery {

/// Costs of an explanation; `docs/recovery.md` has the reasons. The best explanation has the lowest sum.
namespace costs {
inline constexpr int kHeader = -240;       ///< A header, times the share of its undamaged cells.
inline constexpr int kGap = 100;           ///< Bytes that belong to nothing, plus the binary logarithm of their number.
inline constexpr int kValue = 80;          ///< A value that contradicts the others, or is computed from them.
inline constexpr int kPosition = 150;      ///< A wrong position.
inline constexpr int kShift = 160;         ///< From here on all positions are wrong by the same amount.
inline constexpr int kShiftByGap = 20;     ///< The same, by as many bytes as the gap before has.
inline constexpr int kVersion = 80;        ///< A recording of another version than the one before.
inline constexpr int kHeaderWithin = 80;   ///< A whole header within samples.
inline constexpr int kLostRecording = 80;  ///< A recording whose header is lost, where there is room for one.
inline constexpr int kForcedRecording = 200;  ///< The same without room.
inline constexpr int kForeign = 100;          ///< After a gap, a segment of other wells, intervals or earlier times.
inline constexpr int kUnconfirmed = 1000;     ///< Nothing confirms where a segment with a damaged header ends.
inline constexpr int kCut = 60;               ///< The input ends within samples.
inline constexpr int kNearlyEqual = 5;        ///< Two explanations this close are both possible.
}  // namespace costs

/// Which value of a segment is computed from the others instead of read.
enum class EMade : std::uint8_t {
    None,
    Either,  ///< The times contradict the size; the times may be wrong.
    From,
    To,
    Size,
};

/// A candidate that the explanation uses.
struct CPiece {
    const CCandidate* candidate = nullptr;
    std::int64_t end = 0;       ///< Offset of the byte after the piece and its samples.
    std::int64_t samples = 0;   ///< Segment: number of its samples, including those cut off.
    std::int64_t shift = 0;     ///< By how much positions after this piece exceed the offsets they mean.
    std::int64_t tick = 0;      ///< Segment: the interval of its well; 0 if unknown.
    std::int64_t ownShift = 0;  ///< The shift by its own position, if `hasOwnShift`.
    EMade made = EMade::None;
    bool hasOwnShift = false;
    bool lostRecording = false;  ///< A recording whose header is lost begins before this segment.
    bool isCut = false;          ///< The input ends within its samples.
    bool isAmbiguous = false;    ///< What is before it could also be something else.
};

/// Returns the pieces of the best explanation in the order of the input. Removes the headers of raw data files stored
/// as samples from `candidates`.
std::vector<CPiece> Explain(CCandidates& candidates, std::int64_t size, const CReach& reach);

/// Removes the headers of raw data files that were stored as samples. Their positions count from the beginning of the
/// inner file; after it, those of the outer file continue, or the samples end as their segment header says.
void LeaveOutFilesWithin(CCandidates& candidates, std::int64_t size);

}  // namespace vxfileio::recovery
