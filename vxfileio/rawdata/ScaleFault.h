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

/// What a recording header lacks of a well's `UnitsPerAD` and `ADZero`.
struct CScaleFault {
    std::string_view key;  ///< The cell. Valid as long as the layout.
    std::string text;      ///< What it has instead of a number; empty if its list is too short.
};

/// By the ID of the well.
using CScaleFaults = std::map<std::int32_t, CScaleFault>;

/// Returns the fault of each well for which a list of the header doesn't have the finite number that readers
/// read: they take 0 for what is missing, and 1 for `1,5`. `bytes` are those of the header, as far as they are in the
/// file; `wells` is what was read from it.
CScaleFaults ScaleFaultsOf(const CLayout& layout, std::string_view bytes,
                           const std::vector<CRawDataChannelInfo>& wells);

}  // namespace vxfileio::rawdata
