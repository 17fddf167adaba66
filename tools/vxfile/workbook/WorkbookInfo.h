#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// Tells which sheets a workbook has and how far they reach. Throws `CFailure` if its stream can't be read.
CPage InfoOfWorkbook(const std::string& path);

}  // namespace vxfile
