#pragma once

#include <string>

#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Differences.h"

namespace vxfile {

/// Compares two raw data files, of their recordings and wells only those of the view, and adds what differs to
/// `differences`. Throws `CFailure` if one can't be read.
void CompareRawData(const std::string& left, const std::string& right, CDifferences& differences,
                    const CPlateView& view = {});

}  // namespace vxfile
