#pragma once

#include <string>

#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Findings.h"

namespace vxfile {

/// Compares a raw data file with everything that its format fixes: the cells of all headers, positions, sizes against
/// times, and that every byte belongs to one header or segment. Samples may have any value, but pages of zeros among
/// them, which a power cut leaves, are findings. Throws `CFailure` if the file can't be opened.
CFindings VerifyRawData(const std::string& path);

/// Does the same. Findings about recordings and wells that weren't chosen are only counted.
CFindings VerifyChosen(const std::string& path, const CPlateChoice& choice);

}  // namespace vxfile
