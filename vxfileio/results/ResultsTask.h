#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/results/ResultsRecording.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The results of one task: one recording per dose of the series. A value with deep copies.
class VXFILEIO_API CResultsTask {
 public:
    CResultsTask() = default;
    /// Makes one recording per dose, in that order. The rest is that of `CResultsRecording`.
    CResultsTask(const std::vector<std::uint64_t>& doses, const std::vector<std::int32_t>& wellIDs,
                 const std::vector<std::string>& wellLabels, std::uint32_t samples, std::int64_t averageTick,
                 std::int64_t preFPfastTime);

    std::string TaskName;                       ///< The word of the task.
    std::vector<CResultsRecording> Recordings;  ///< In the order of the doses.

    void Clear();  ///< Removes the recordings; the name stays.

    /// Writes the element `Task`.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Task`, with the archive after its start tag.
    void Load(CXmlFileArchive& archive);
};
