#pragma once

#include <string>
#include <vector>

#include "tools/vxfile/page/PlateValues.h"

namespace vxfile::page {

/// One plate in an index.
struct CIndexedPlate {
    std::string page;      ///< The name of its page, next to the index; empty if it couldn't be made.
    std::string inputs;    ///< A checksum of what the page was made from.
    std::string results;   ///< The name of the results file.
    std::string compound;  ///< All texts are as in `CPlateValues`.
    std::string plate;
    std::string recorded;
    std::string wells;    ///< The number of wells.
    std::string measure;  ///< What the small heat map shows, such as "QT-Interval, normalised, 3 µM".
    std::string mean;     ///< The mean of it.
    std::string state;    ///< "sound", or what isn't.
    bool isSound = true;
    std::vector<std::vector<int>> colours;  ///< The small heat map by row: numbers of colours, -1 where there is none.
};

/// Returns the entry for a plate: it shows the QT interval, if it was measured, at the greatest dose. Page, checksum,
/// name and state are left to the caller.
CIndexedPlate IndexedPlateOf(const CPlateValues& values);

/// Returns the index: a table that can be searched and sorted, with a link to the page of each plate.
std::string IndexPage(const std::vector<CIndexedPlate>& entries);

/// Returns the entries that an index was made from; none if the text isn't an index.
std::vector<CIndexedPlate> EntriesOf(const std::string& index);

}  // namespace vxfile::page
