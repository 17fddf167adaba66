#pragma once

#include <string>

#include "tools/vxfile/report/Differences.h"

namespace vxfile {

/// Compares two workbooks and adds to `differences` how they differ. Throws `CFailure` if one can't be read.
void CompareWorkbooks(const std::string& left, const std::string& right, CDifferences& differences);

}  // namespace vxfile
