#pragma once

#include <ostream>
#include <string>

#include "recovery/Report.h"
#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Json.h"

namespace vxfile {

/// The names of the files of a recovery, as the user typed them.
struct CRecoverNames {
    std::string source;
    std::string target;
};

/// Prints a report for people: of recordings and wells only those that are chosen, but the sums of all.
void PrintReport(std::ostream& out, const vxfileio::recovery::CReport& report, const CRecoverNames& names,
                 const CPlateView& view);

/// Returns a report for programs about all recordings and wells.
CJson ToJson(const vxfileio::recovery::CReport& report, const CRecoverNames& names, const CPlateView& view);

}  // namespace vxfile
