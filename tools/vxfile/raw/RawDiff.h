#pragma once

#include <string>

#include "tools/vxfile/report/Differences.h"

namespace vxfile {

/// Compares two raw data files and adds what differs to `differences`. Throws `CFailure` if one can't be read.
void CompareRawData(const std::string& left, const std::string& right, CDifferences& differences);

}  // namespace vxfile
