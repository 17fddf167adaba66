#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// Wells whose samples have no values in physical units.

namespace vxfileio::rawdata {

/// Why a well has no values in units.
struct CScaleFault {
    std::string_view key;  ///< The cell. Valid as long as the layout.
    std::string text;      ///< What it has instead of a number; empty if its list is too short.
};

/// By the ID of the well, at most one for each cell.
using CScaleFaults = std::multimap<std::int32_t, CScaleFault>;

/// Returns a fault for each well and cell, `UnitsPerADs` or `ADZeros`, that doesn't have a finite number for it.
/// Readers take 0 for a missing one, and 1 for `1,5`. If the header lists a well twice, the first entry counts. `bytes`
/// are those of the header, as far as they are in the file; `wells` is what was read from it.
CScaleFaults ScaleFaultsOf(const CLayout& layout, std::string_view bytes,
                           const std::vector<CRawDataChannelInfo>& wells);

}  // namespace vxfileio::rawdata
