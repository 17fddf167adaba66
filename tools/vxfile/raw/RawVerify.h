#pragma once

#include <string>

#include "tools/vxfile/report/Findings.h"

namespace vxfile {

/// Holds a raw data file against everything that its format fixes: the cells of all headers, where positions lead,
/// sizes against times, and that every byte belongs to something. Samples may have any value and aren't read. Throws
/// `CFailure` if the file can't be opened.
CFindings VerifyRawData(const std::string& path);

}  // namespace vxfile
