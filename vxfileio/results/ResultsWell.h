#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/results/Response.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The results of one well in one recording. Times are in the instrument's time unit, doses picomolar. A value with
/// deep copies.
class VXFILEIO_API CResultsWell {
 public:
    CResultsWell() = default;
    /// Makes a well with an average of `samples` zeros.
    CResultsWell(std::uint64_t dose, std::string label, std::uint32_t samples, std::int64_t averageTick,
                 std::int64_t preFPfastTime);

    std::string WellLabel;                           ///< For people, such as "A1".
    std::uint64_t Dose = 0;                          ///< The dose of its recording.
    std::int64_t AveragePreFPfastTime = 0;           ///< The time from the beginning of the average to its event.
    std::vector<std::int64_t> FPfastDetectionTimes;  ///< When each fast field potential was: the beats of the heart.
    std::uint32_t AverageCount = 0;                  ///< How many of them are in the average; 0 is no average.
    std::vector<double> Average;                     ///< The average trace, one voltage a sample.
    std::int64_t AverageTick = 0;                    ///< Spacing of its samples.
    bool FPfastDetected = false;                     ///< Whether the eight fields below hold findings.
    double FPfastMaxAmp = 0.0;                       ///< Greatest amplitude,
    std::int64_t FPfastMaxAmpTimeStamp = 0;          ///< and when it was reached.
    double FPfastMinAmp = 0.0;                       ///< Least amplitude,
    std::int64_t FPfastMinAmpTimeStamp = 0;          ///< and when it was reached.
    double FPfastSlopeX0 = 0.0;                      ///< The slope's first point,
    double FPfastSlopeY0 = 0.0;                      ///< and its voltage.
    double FPfastSlopeX1 = 0.0;                      ///< The slope's second point,
    double FPfastSlopeY1 = 0.0;                      ///< and its voltage.
    enFPmaxType FPmaxType = enFPmaxType::Undefined;  ///< The shape of the maximum.
    std::map<enResponseType, CResponse> Responses;   ///< The responses as measured.
    std::map<enResponseType, CResponse> NormalizedResponses;  ///< The same after the caller's normalisation.

    /// Sets a response and its label. `enValueType::Normalized` picks `NormalizedResponses`, any other `Responses`.
    void SetResults(enResponseType type, enValueType valueType, double value);
    /// Returns a response; 0.0 if it isn't there.
    double GetResults(enResponseType type, enValueType valueType) const;
    /// Returns whether a response is there.
    bool ResultsExist(enResponseType type, enValueType valueType) const;

    /// Returns whether there is an average.
    bool AverageExist() const noexcept { return AverageCount > 0; }
    /// Returns the number of samples of the average.
    std::uint32_t GetAveSamples() const noexcept { return static_cast<std::uint32_t>(Average.size()); }
    /// Returns a sample of the average; 0.0 beyond its end.
    double GetAveVoltage(std::uint32_t sample) const noexcept;
    /// Returns the time of a sample: the first is one tick after the start of the axis.
    std::int64_t GetAveTimeStamp(std::uint32_t sample) const noexcept;

    void ClearResponses();            ///< Removes both kinds of responses.
    void ClearNormalizedResponses();  ///< Removes the normalised ones.
    void Clear();                     ///< Gives every field its default.

    /// Writes the content of the element `Well` after `WellID`. Without detection times that is only the label, the
    /// dose and the empty list of times; without `FPfastDetected` the eight fields are left empty.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Well`, with the archive after its `WellID`. The eight fields are read only after a
    /// `FPfastDetected` that is true.
    void Load(CXmlFileArchive& archive);
};
