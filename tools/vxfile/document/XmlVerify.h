#pragma once

#include <string>

#include "tools/vxfile/report/Findings.h"

namespace vxfile {

/// @name Settings and results files
/// Each holds a document against the form in which the library writes it: the declaration, every tag and their order,
/// the counts of lists, and how each value is written. What readers tolerate is a finding all the same. The file is
/// held in memory. Both throw `CFailure` if it can't be opened.
/// @{
CFindings VerifySettings(const std::string& path);
CFindings VerifyResults(const std::string& path);
/// @}

}  // namespace vxfile
