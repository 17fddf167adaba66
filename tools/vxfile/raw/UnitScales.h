#pragma once

#include <cstdint>
#include <set>

#include "verify/raw/RawScan.h"

namespace vxfile {

/// Returns the wells of a recording without `UnitsPerAD` or `ADZero`: the list in the header is too short, or doesn't
/// have a number for the well. Their samples are known only in converter steps.
std::set<std::int32_t> WellsWithoutScale(const CRawScan& scan, const CRecordingAt& recording);

}  // namespace vxfile
