#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "verify/raw/RawScan.h"
#include "vxfileio/rawdata/ScaleFault.h"

namespace vxfile {

using vxfileio::rawdata::CScaleFault;
using vxfileio::rawdata::CScaleFaults;

/// Returns why samples of wells of a recording have no values in physical units.
CScaleFaults ScaleFaultsOf(const CRawScan& scan, const CRecordingAt& recording);

/// Returns the fault of a well as a sentence without its full stop, such as `UnitsPerADs of recording 1 (Series 1) has
/// "0,3" for well 11, which isn't a valid number`. `index` is that of the recording in the file.
std::string TextOf(const CScaleFault& fault, const CRecordingAt& recording, std::size_t index, std::int32_t well);

}  // namespace vxfile
