#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/vxfile/plate/PlateView.h"
#include "verify/raw/RawScan.h"
#include "vxfileio/results/ResultsRows.h"

/// @file
/// What users can choose of a results file, and the rows of what they chose.

namespace vxfile {

/// The plate of a results file.
struct CResultsPlate {
    /// Headers with task, dose and wells alone, one for each task and dose. Doses beyond 63 bits, which no word means,
    /// have none.
    std::vector<CRecordingAt> recordings;
    std::map<std::int32_t, std::string> labels;  ///< Of each well by its ID, in UTF-8.
    std::string damage;                          ///< What is wrong with the document, as `WalkResults` returns it.
};

/// Reads the file, as far as it isn't damaged. Throws `CExcVXReader` if it can't be opened.
CResultsPlate PlateOfResults(const std::string& path);

/// Puts the rows of what is chosen of a results file. Returns what is wrong with the document, as `WalkResults` does.
[[nodiscard]] std::string WalkChosen(const std::string& path, const CPlateChoice& choice,
                                     vxfileio::results::CResultsRows& rows);

}  // namespace vxfile
