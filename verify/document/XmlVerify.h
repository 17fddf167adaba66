#pragma once

#include <string>

#include "verify/Findings.h"
#include "verify/Reach.h"

namespace vxfile {

/// @name Settings and results files
/// Each compares a document with the form in which the library writes it: the declaration, every tag and their order,
/// the counts of lists, and the form of each value. Reports differences even if readers tolerate them. Holds the whole
/// file in memory. Throws `CFailure` if it can't be opened.
/// @{
CFindings VerifySettings(const std::string& path, const CReach& reach = IgnoreReach);
CFindings VerifyResults(const std::string& path, const CReach& reach = IgnoreReach);
/// @}

}  // namespace vxfile
