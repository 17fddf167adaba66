#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// Returns what a raw data file contains. Counts the samples of a large file only if `full` is set, since that takes a
/// walk from segment to segment. Shows progress if the file `isAlone`. Throws `CFailure` if it can't be opened.
CPage InfoOfRawData(const std::string& path, bool full, bool isAlone = true);

}  // namespace vxfile
