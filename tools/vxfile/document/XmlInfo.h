#pragma once

#include <string>

#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// @name What settings and results files hold
/// As the library's readers take it, damaged or not. Both throw `CExcVXReader` if the file can't be opened.
/// @{
CPage InfoOfSettings(const std::string& path);
CPage InfoOfResults(const std::string& path);
/// @}

}  // namespace vxfile
