#pragma once

#include <string>

#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// Returns the page about a plate: one HTML document that loads nothing. The same values always produce the same bytes.
std::string PlatePage(const CPlateValues& values);

}  // namespace vxfile::page
