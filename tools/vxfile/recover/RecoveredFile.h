#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/vxfile/recover/Inventory.h"
#include "tools/vxfile/recover/Mending.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Is told of a segment with the header that it has now, and of the size of the new file by then.
using CTellSegment =
    std::function<void(const CFoundSegment& segment, const vxfileio::rawdata::CSegmentHdr& header, std::int64_t size)>;

/// Writes the file that `inventory` describes, from the samples of `source`, header behind header as a writer of the
/// library leaves it; `recordings` are the headers in the same order. Memory is a block, whatever the size of segments.
/// Unlike the library's writer it knows everything beforehand, and tells when the disk is full: throws `CFailure`.
/// `tell` is called for each segment that was written. Returns the size of the new file.
std::int64_t WriteRecovered(const CInventory& inventory, const CMendedFileHdr& fileHdr,
                            const std::vector<CMendedRecording>& recordings, const vxfileio::CFile& source,
                            const std::string& path, const CTellSegment& tell);

}  // namespace vxfile
