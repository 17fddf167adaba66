#pragma once

#include <cstdint>
#include <vector>

#include "recovery/Candidates.h"

/// @file
/// Step 2: finds the explanation of the input that accounts for the most headers with the fewest assumptions.

namespace vxfileio::recovery {

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
    std::int64_t end = 0;           ///< Offset of the byte after the piece and its samples.
    std::int64_t samples = 0;       ///< Segment: number of its samples, including those cut off.
    std::int64_t shift = 0;         ///< By how much positions after this piece exceed the offsets they mean.
    std::int64_t ownShift = kLost;  ///< The shift by its own position.
    EMade made = EMade::None;
    bool lostRecording = false;  ///< A recording whose header is lost begins before this segment.
    bool isCut = false;          ///< The input ends within its samples.

    /// @name Set once the best explanation is known
    /// @{
    std::int64_t shiftBefore = 0;  ///< By how much positions before it exceed the offsets they mean.
    /// Its own shift if `isAstray`; otherwise the one that the first correct position from here on in its file shows,
    /// or `kLost`.
    std::int64_t evidentShift = kLost;
    std::int64_t nextRecording = kLost;  ///< The position of the next recording header, by `ownShift`.
    /// Its own position has another shift than those before, and no later one proves it wrong: bytes may be missing
    /// before it, or inserted there.
    bool isAstray = false;
    bool isAmbiguous = false;  ///< What is before it could also be something else.
    /// @}

    /// Returns whether its own position is right.
    bool IsShown() const { return ownShift == shift + candidate->moved; }
    /// Returns how many bytes its position shows to be missing before it; less than 0 if there are extra bytes. Only a
    /// correct position counts, or a larger one that none proves wrong.
    std::int64_t MissingBefore() const {
        return IsShown() || (isAstray && ownShift > shiftBefore) ? ownShift - shiftBefore : 0;
    }
};

/// Returns the pieces of the best explanation in the order of the input, which has `size` bytes.
std::vector<CPiece> Explain(const CCandidates& candidates, std::int64_t size, const CReach& reach);

}  // namespace vxfileio::recovery
