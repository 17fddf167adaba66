#pragma once

#include "tools/vxfile/page/Html.h"
#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// @name The sections of a page, in its order
/// A section that has nothing to show writes nothing.
/// @{
void WriteHead(CHtml& html, const CPlateValues& values);           ///< What, when, compound, plate, doses, checks.
void WriteOverview(CHtml& html, const CPlateValues& values);       ///< The means of all responses.
void WriteChoices(CHtml& html, const CPlateValues& values);        ///< Which response, value and dose is shown.
void WriteHeatMaps(CHtml& html, const CPlateValues& values);       ///< The plate, one table for each choice.
void WriteDoseResponses(CHtml& html, const CPlateValues& values);  ///< Response by dose: charts, and their numbers.
void WriteWell(CHtml& html, const CPlateValues& values);           ///< The chosen well, which a script fills in.
void WriteValues(CHtml& html, const CPlateValues& values);         ///< All values, exactly.
void WriteFiles(CHtml& html, const CPlateValues& values);          ///< The files, their sizes and their soundness.
/// @}

/// Writes the data of all wells for the script.
void WriteWellData(CHtml& html, const CPlateValues& values);

/// Returns the word for values that don't count, such as "deselected"; empty for others.
std::string_view WordOf(EState state);

}  // namespace vxfile::page
