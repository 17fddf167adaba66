#pragma once

#include <string>

#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Page.h"

namespace vxfile {

/// Returns what a raw data file contains: of recordings and wells only those of the view, with its labels. Counts the
/// samples of a large file only if `full` is set, since that takes a walk from segment to segment. Shows progress if
/// the file `isAlone`. Throws `CFailure` if it can't be opened.
CPage InfoOfRawData(const std::string& path, bool full, bool isAlone = true, const CPlateView& view = {});

}  // namespace vxfile
