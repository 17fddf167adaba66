#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/vxfile/recover/Inventory.h"

namespace vxfile {

/// A recording as the new file has it.
struct CMendedRecording {
    std::string bytes;  ///< The header in the newest layout; its positions aren't set yet.
    CRawDataRecordingHdr header;
    CDamagedCells lost;              ///< Cells of the old header that said nothing, or something that can't be.
    std::vector<std::string> notes;  ///< What had to be made up, a clause each.
};

/// The file header as the new file has it.
struct CMendedFileHdr {
    std::string bytes;  ///< Its position isn't set yet.
    std::vector<std::string> notes;
};

/// Makes a whole header of what is left of one: cells that are whole stay as they are, to the byte; what is damaged is
/// made up from the others and from the segments. `number` is that of a recording of which nothing is known.
CMendedRecording Mend(const CFoundRecording& recording, std::int32_t number);

/// The same for the file header.
CMendedFileHdr MendFileHdr(const CInventory& inventory);

}  // namespace vxfile
