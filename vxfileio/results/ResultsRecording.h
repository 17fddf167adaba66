#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/results/ResponseMean.h"
#include "vxfileio/results/ResultsWell.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The results of one recording: its wells, and statistics over the compound's wells. A value with deep copies.
class VXFILEIO_API CResultsRecording {
 public:
    CResultsRecording() = default;
    /// Makes one well per ID, with the label at the same index, or an empty label if there is none. A repeated ID
    /// replaces the earlier well. The last three are those of `CResultsWell`.
    CResultsRecording(std::uint64_t dose, const std::vector<std::int32_t>& wellIDs,
                      const std::vector<std::string>& wellLabels, std::uint32_t samples, std::int64_t averageTick,
                      std::int64_t preFPfastTime);

    std::uint64_t Dose = 0;                                       ///< The dose, in picomolar.
    std::map<std::int32_t, CResultsWell> Wells;                   ///< The wells, by well ID.
    std::map<enResponseType, CResponseMean> NormalizedResponses;  ///< The compound's statistics.

    /// Returns whether there is a statistic of this response.
    bool ResultsExist(enResponseType type) const { return NormalizedResponses.contains(type); }
    void ClearResponses();  ///< Removes the statistics; the wells stay.
    void Clear();           ///< Gives every field its default.

    /// Writes the element `Recording`.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Recording`. Wells are found by their position: `WellID` is the first child.
    void Load(CXmlFileArchive& archive);
};
