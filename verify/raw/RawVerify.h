#pragma once

#include <string>

#include "verify/Findings.h"
#include "verify/Reach.h"
#include "verify/raw/PlateChoice.h"
#include "verify/raw/SampleReceiver.h"

namespace vxfile {

/// Compares a raw data file with everything that its format fixes: the cells of all headers, positions, sizes against
/// times, and that every byte belongs to one header or segment. Samples may have any value, but pages of zeros among
/// them, which a power cut leaves, are findings. Throws `CFailure` if the file can't be opened.
CFindings VerifyRawData(const std::string& path, const CReach& reach = IgnoreReach);

/// Does the same, and delivers the samples to a receiver.
CFindings VerifyWithSamples(const std::string& path, CSampleReceiver& receiver, const CReach& reach = IgnoreReach);

/// Does the same as the first. Findings about recordings and wells that weren't chosen are only counted.
CFindings VerifyChosen(const std::string& path, const CPlateChoice& choice, const CReach& reach = IgnoreReach);

}  // namespace vxfile
