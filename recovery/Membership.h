#pragma once

#include <vector>

#include "recovery/Explanation.h"
#include "recovery/Found.h"

/// @file
/// Step 5: finds segments that may be of another recording than that of the header before them.

namespace vxfileio::recovery {

/// Adds a doubt to each recording with segments that may be of another one: about the first of these, and all after it.
/// `found` is what the pieces contain.
void DoubtMembership(const std::vector<CPiece>& pieces, CFound& found);

}  // namespace vxfileio::recovery
