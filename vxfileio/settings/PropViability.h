#pragma once

#include <cstdint>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// The test that decides which wells are viable. A value with deep copies.
class VXFILEIO_API CPropViability : public CVXProperty {
 public:
    bool ApplyViabilityTest = false;            ///< Whether the test is made.
    bool AnalyzeHeartRate = true;               ///< Whether the beat rate counts.
    bool ApplyMinimumWellsPerCompound = false;  ///< Whether a compound needs a least number of wells.
    double FMin = 0.5;                          ///< Least beat rate.
    double FMax = 4.0;                          ///< Greatest beat rate.
    std::int64_t RecordTime = 10000000;         ///< Length of the test's recording, in the instrument's time unit.
    std::uint64_t Dose = 0;                     ///< Dose in picomolar.

    /// Writes the element `PropertyViability`.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyViability`.
    void Load(CXmlFileArchive& archive) override;
};
