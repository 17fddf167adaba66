#pragma once

#include <ostream>
#include <string>

#include "recovery/Report.h"
#include "tools/vxfile/report/Json.h"

namespace vxfile {

/// The names of the files of a recovery, as the user typed them.
struct CRecoverNames {
    std::string source;
    std::string target;
};

/// Returns why something is lost or in doubt, as a clause.
std::string TextOf(const vxfileio::recovery::CRemark& remark);

/// Returns what had to be made up, as a clause. `header` names the header.
std::string TextOf(const vxfileio::recovery::CNote& note, const std::string& header);

/// Prints a report for people.
void PrintReport(std::ostream& out, const vxfileio::recovery::CReport& report, const CRecoverNames& names);

/// Returns a report for programs.
CJson ToJson(const vxfileio::recovery::CReport& report, const CRecoverNames& names);

}  // namespace vxfile
