#pragma once

#include <string>
#include <vector>

#include "tools/vxfile/page/IndexPage.h"

namespace vxfile {

/// The files of a run.
struct CRunPaths {
    std::string results;
    std::string settings = {};   ///< Empty if there is none.
    std::string recording = {};  ///< The same.
};

/// Adds the settings file and the raw data file that are next to the results and have their Guid, if they aren't named.
CRunPaths WithNeighbours(CRunPaths paths);

/// A page about a plate.
struct CPlateReport {
    std::string page;
    page::CIndexedPlate entry;       ///< For an index, without the name of the page and the checksum.
    std::vector<std::string> notes;  ///< What isn't right, a sentence each; the page says it, too.
    bool isSound = true;             ///< Whether all files are sound.
};

/// Reads the files and makes the page. Throws `CFailure` or `CExcVXReader` if a file can't be read, or is of another
/// kind.
CPlateReport MakePlateReport(const CRunPaths& paths);

}  // namespace vxfile
