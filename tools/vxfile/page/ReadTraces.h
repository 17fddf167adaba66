#pragma once

#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// Reads the recordings of a file that the results are about, and reduces their samples to traces. The n-th
/// recording of a task in the results is that of the n-th smallest number in the file. What is missing or can't be
/// read becomes a note.
void ReadTraces(CPlateValues& values, const CRawDataFile& file);

}  // namespace vxfile::page
