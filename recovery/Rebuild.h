#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "recovery/Found.h"
#include "recovery/Input.h"

/// @file
/// Step 3: the new file. Undamaged cells stay as they are, to the byte; damaged ones are made up from the rest.

namespace vxfileio::recovery {

/// A header of the new file. Its positions aren't set yet.
struct CRebuiltFileHdr {
    std::string bytes;
    std::vector<CNote> notes;
};
struct CRebuiltRecordingHdr {
    std::string bytes;
    std::string task;
    std::int32_t number = 0;
    std::vector<CNote> notes;
};

/// Returns the layout that the new file has: that of the input, or the oldest one that is still written.
const rawdata::CLayout& LayoutForRebuilding(CWindow& window, const CFound& found);

CRebuiltFileHdr RebuildFileHdr(CWindow& window, const CFound& found, const rawdata::CLayout& layout);

/// `number` is that of a recording of which nothing is known.
CRebuiltRecordingHdr RebuildRecordingHdr(CWindow& window, const CFoundRecording& recording, std::int32_t number,
                                         const rawdata::CLayout& layout);

/// Takes the next bytes of the new file. May throw to end the work.
using CSink = std::function<void(std::span<const std::byte>)>;

/// Writes the new file, header after header as a writer of the library leaves it, and adds what it has to the report,
/// and the doubts about its samples.
/// Memory is a block, whatever the size of segments. `reach` is called with the size of the new file so far.
void Rebuild(CWindow& window, const CFound& found, const CSink& sink, const CReach& reach, CReport& report);

}  // namespace vxfileio::recovery
