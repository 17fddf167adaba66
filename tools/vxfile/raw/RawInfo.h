#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// Tells what a raw data file holds. Large files are told from their headers alone, without a count of their samples,
/// unless `full` is set: to count them is to walk from segment to segment. Throws `CFailure` if it can't be opened.
CPage InfoOfRawData(const std::string& path, bool full);

}  // namespace vxfile
