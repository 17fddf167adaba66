#pragma once

#include <optional>
#include <vector>

#include "recovery/Explanation.h"
#include "recovery/Found.h"

/// @file
/// Step 4: what the explanation assumes is a doubt, what it leaves out is a loss.

namespace vxfileio::recovery {

/// What an account says.
struct CAccount {
    CFound found;
    bool isStraight = true;  ///< Every position points at what comes next in the input.
};

/// Returns the recordings and segments of an explanation, with its losses and doubts. `keepCut` keeps a last segment
/// that was cut, up to its last whole sample.
CAccount AccountFor(CWindow& window, const CCandidates& candidates, const std::vector<CPiece>& pieces, bool keepCut,
                    bool isGrowing);

/// Returns what a reader finds that goes from position to position, in its order. Returns nothing unless every header
/// on its way is whole.
std::optional<CFound> FollowPositions(CWindow& window, const CReach& reach);

}  // namespace vxfileio::recovery
