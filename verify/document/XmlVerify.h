#pragma once

#include <span>
#include <string>

#include "verify/Findings.h"
#include "verify/Reach.h"
#include "vxfileio/xmlarchive/XmlElement.h"

namespace vxfile {

/// @name Settings and results files
/// Each compares a document with the form in which the library writes it: the declaration, every tag and their order,
/// the counts of lists, and the form of each value. Reports differences even if readers tolerate them. Holds the whole
/// file in memory. Throws `CFailure` if it can't be opened.
/// @{
CFindings VerifySettings(const std::string& path, const CReach& reach = IgnoreReach);
CFindings VerifyResults(const std::string& path, const CReach& reach = IgnoreReach);
/// @}

/// The same for a document whose root has these children, which outlive the call.
CFindings VerifyDocument(const std::string& path, std::span<const vxfileio::xmlarchive::CXmlElement> children,
                         const CReach& reach = IgnoreReach);

}  // namespace vxfile
