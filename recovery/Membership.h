#pragma once

#include <vector>

#include "recovery/Explanation.h"
#include "recovery/Found.h"

/// @file
/// Step 5: finds segments that may be of another recording than that of the header before them.

namespace vxfileio::recovery {

/// Adds at most one doubt to each recording: about its first segment that may be of another one, and so about those
/// after it. `found` must be what `AccountFor` returned for these pieces.
void DoubtMembership(const std::vector<CPiece>& pieces, CFound& found);

}  // namespace vxfileio::recovery
