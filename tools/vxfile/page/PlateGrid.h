#pragma once

#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// Fills in wells, their places and the labels of rows and columns. With settings, the layout and the wells' records
/// say where the wells are; without, their labels do, such as "B7". Wells with the same place, or none, aren't put on
/// the plate.
void ArrangeWells(CPlateValues& values, const std::map<std::int32_t, std::string>& labels,
                  const CPropRecordPlate* plate);

}  // namespace vxfile::page
