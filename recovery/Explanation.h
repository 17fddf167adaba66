#pragma once

#include <cstdint>
#include <vector>

#include "recovery/Candidates.h"

/// @file
/// Step 2: finds the explanation of the input that accounts for the most headers with the fewest assumptions.

namespace vxfileio::recovery {

/// What an explanation costs, as in the table of `docs/recovery.md`, which has the reasons. The best explanation has
/// the lowest sum.
namespace costs {
inline constexpr int kHeader = -240;       ///< A header, times the share of its undamaged cells.
inline constexpr int kGap = 100;           ///< Bytes that belong to nothing, and twice the logarithm of their number.
inline constexpr int kValue = 80;          ///< A value that contradicts the others, or is computed; cells that moved.
inline constexpr int kVersion = 80;        ///< A recording of another version than the one before.
inline constexpr int kHeaderWithin = 80;   ///< A whole header within samples.
inline constexpr int kFileWithin = 100;    ///< A file within the samples of a segment whose header is lost.
inline constexpr int kLostRecording = 80;  ///< A recording whose header is lost.
inline constexpr int kForcedRecording = 200;  ///< The same, where there is no room for a header.
inline constexpr int kCutHeader = 160;        ///< A recording header without its end.
inline constexpr int kNoBeginning = 80;       ///< A recording header without its beginning.
inline constexpr int kForeign = 100;          ///< A segment after a gap that doesn't fit its recording.
inline constexpr int kPosition = 150;         ///< A wrong position.
inline constexpr int kShift = 160;            ///< From here on, all positions are wrong by the same distance.
inline constexpr int kShiftByGap = 20;        ///< The same, by the number of missing or extra bytes here.
inline constexpr int kUnconfirmed = 1000;     ///< Nothing confirms where a segment with a damaged header ends.
inline constexpr int kMixedHeader = 1000;     ///< The end of a recording header seems to be that of another one.
inline constexpr int kCut = 60;               ///< The input ends within the samples.
inline constexpr int kNearlyEqual = 5;        ///< Two explanations this close are ambiguous.
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
    std::int64_t end = 0;                ///< Offset of the byte after the piece and its samples.
    std::int64_t samples = 0;            ///< Segment: number of its samples, including those cut off.
    std::int64_t shift = 0;              ///< By how much positions after this piece exceed the offsets they mean.
    std::int64_t ownShift = kLost;       ///< The shift by its own position.
    std::int64_t shownShift = kLost;     ///< The shift by the first correct position from here on in its file.
    std::int64_t nextRecording = kLost;  ///< The position of the next recording header, by `ownShift`.
    EMade made = EMade::None;
    bool lostRecording = false;  ///< A recording whose header is lost begins before this segment.
    bool isCut = false;          ///< The input ends within its samples.
    bool isAmbiguous = false;    ///< What is before it could also be something else.

    /// Returns whether its own position is right.
    bool IsShown() const { return ownShift == shift + candidate->moved; }
};

/// Returns the pieces of the best explanation in the order of the input, which has `size` bytes.
std::vector<CPiece> Explain(const CCandidates& candidates, std::int64_t size, const CReach& reach);

}  // namespace vxfileio::recovery
