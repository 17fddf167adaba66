#pragma once

#include <optional>
#include <vector>

#include "recovery/Explanation.h"
#include "recovery/Found.h"

/// @file
/// Step 4: reports what the explanation assumes as a doubt, and what it leaves out as a loss.

namespace vxfileio::recovery {

/// Returns the recordings and segments of an explanation, with its losses and doubts. `keepCut` keeps the whole samples
/// of a last segment that is cut.
CFound AccountFor(CWindow& window, const std::vector<CPiece>& pieces, bool keepCut, bool isGrowing);

/// Returns what a reader finds by following the positions, in that order. Returns nothing unless all pieces are found
/// and every header on the way is whole.
std::optional<CFound> FollowPositions(CWindow& window, const CCandidates& candidates,
                                      const std::vector<CPiece>& pieces);

}  // namespace vxfileio::recovery
