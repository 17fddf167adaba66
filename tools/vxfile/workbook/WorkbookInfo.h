#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// Returns the sheets of a workbook with their sizes and numbers of cells. Throws `CFailure` if its stream can't be
/// read.
CPage InfoOfWorkbook(const std::string& path);

}  // namespace vxfile
