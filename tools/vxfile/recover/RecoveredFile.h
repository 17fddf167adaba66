#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vxfile/recover/Inventory.h"
#include "tools/vxfile/recover/Mending.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Is told of a segment that was written, and of the size of the new file by then.
using CTellSegment = std::function<void(const CFoundSegment& segment, std::int64_t size)>;

/// The files of a recovery.
struct CCopyFiles {
    const vxfileio::helpers::CFile& source;
    const std::string& sourcePath;  ///< What messages call it.
    const std::string& work;        ///< Where the new file is written.
    const std::string& target;      ///< What messages call it.
};

/// Writes the file that `inventory` describes, header behind header as a writer of the library leaves it; `recordings`
/// are the headers in the same order. Memory is a block, whatever the size of segments. Unlike the library's writer it
/// knows everything beforehand, and tells when the disk is full: throws `CFailure`. `tell` is called for each segment
/// that was written. Returns the size of the new file.
std::int64_t WriteRecovered(const CInventory& inventory, const CMendedFileHdr& fileHdr,
                            const std::vector<CMendedRecording>& recordings, const CCopyFiles& files,
                            const CTellSegment& tell);

}  // namespace vxfile
