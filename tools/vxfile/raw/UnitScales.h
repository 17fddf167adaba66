#pragma once

#include <cstdint>
#include <set>

#include "tools/vxfile/raw/RawScan.h"

namespace vxfile {

/// Returns the wells of a recording whose `UnitsPerAD` or `ADZero` its header doesn't tell: the list is too short, or
/// has something else than a number for it. Their samples are known in steps of the converter alone.
std::set<std::int32_t> WellsWithoutScale(const CRawScan& scan, const CRecordingAt& recording);

}  // namespace vxfile
