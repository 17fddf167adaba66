#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "recovery/Found.h"
#include "recovery/Input.h"

/// @file
/// Step 3: the new file. Undamaged cells stay as they are, to the byte; damaged ones are made up from the rest.

namespace vxfileio::recovery {

/// Takes the next bytes of the new file. May throw to end the work.
using CSink = std::function<void(std::span<const std::byte>)>;

/// Writes the new file, header after header as a writer of the library leaves it, and adds what it has to the report,
/// and the doubts about its samples.
/// Memory is a block, whatever the size of segments. `reach` is called with the size of the new file so far.
void Rebuild(CWindow& window, const CFound& found, const CSink& sink, const CReach& reach, CReport& report);

}  // namespace vxfileio::recovery
