#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// @name What settings and results files contain
/// Each returns the values that the library's reader gets from the file, and what was wrong with a damaged one. Throws
/// `CExcVXReader` if the file can't be opened.
/// @{
CPage InfoOfSettings(const std::string& path);
CPage InfoOfResults(const std::string& path);
/// @}

}  // namespace vxfile
