#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "recovery/Found.h"
#include "recovery/Input.h"

/// @file
/// Step 3: writes the new file. Keeps undamaged cells to the byte, and computes damaged ones from the rest.

namespace vxfileio::recovery {

/// Receives the next bytes of the new file. May throw to stop.
using CSink = std::function<void(std::span<const std::byte>)>;

/// Writes the new file, header by header, as a writer of the library would, and adds its contents and the doubts about
/// its samples to the report. Needs memory for one block, regardless of the size of segments. `reach` is called with
/// the size of the new file so far.
void Rebuild(CWindow& window, const CFound& found, const CSink& sink, const CReach& reach, CReport& report);

}  // namespace vxfileio::recovery
