#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "vxfileio/results/ResultsRows.h"

namespace vxfile {

using vxfileio::results::CRecordingPlace;

/// Receives what a results file contains. A function that isn't set makes the walk faster.
struct CResultsVisitor {
    std::function<void(const CRecordingPlace&, std::int32_t wellID, const CResultsWell&)> well = {};
    std::function<void(const CRecordingPlace&, const CResponseMean&)> mean = {};  ///< Of a recording.
    std::function<void(const CRecordingPlace&)> recording = {};                   ///< After its wells and means.
};

/// Reads a results file from front to back, and passes each well or mean to the visitor in the order of the document.
/// Nothing is passed after a syntax error. Memory holds one well; only in a document whose tasks or recordings have
/// their name or dose after their wells, one task or recording. Returns what was wrong with the document, as
/// `CIResultsReader::GetReadError` does. Throws `CExcVXReader` if the file can't be opened.
[[nodiscard]] std::string WalkResults(const std::string& path, const CResultsVisitor& visitor);

}  // namespace vxfile
