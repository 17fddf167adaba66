#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/settings/VXProperty.h"

/// Whether one well counts in one recording, and how each of its responses was obtained.
struct WellAnalysis {
    /// The mark of each response.
    std::map<enResponseType, enAnalysisMark> Responses = {
        {enResponseType::NaAmplitude, enAnalysisMark::Automatic},
        {enResponseType::NaSlope, enAnalysisMark::Automatic},
        {enResponseType::QTInterval, enAnalysisMark::Automatic},
    };
    bool Analyze = true;  ///< Whether the well counts at all.
};

/// The wells of one recording, by well ID.
using RecordingAnalysis = std::map<std::int32_t, WellAnalysis>;

/// The recordings of one task, from number 0 on.
using TaskAnalysis = std::vector<RecordingAnalysis>;

/// How field potentials are detected and averaged, and which values count. All times are in the instrument's time unit.
/// A value with deep copies.
class VXFILEIO_API CPropAnalyzer : public CVXProperty {
 public:
    std::string Operator;             ///< Who analysed.
    std::string Program;              ///< The analysing program.
    std::string ProgramVersion;       ///< Its version.
    std::uint64_t AnalyzingDate = 0;  ///< The time of the last `Save`, as a file time.
    /// How the averaging interval is defined.
    enFPAveIntervalType FPAveIntervalType = enFPAveIntervalType::UserDefined;
    double FPAveHRDefinedFactor = 0.0;               ///< Factor of an interval that the heart rate defines.
    std::map<enTask, TaskAnalysis> AnalyzeSettings;  ///< The marks: task, recording number, well ID.
    std::int64_t PreFPfastTime = 0;                  ///< Time before the fast field potential.
    std::int64_t FPAverageTime = 0;                  ///< Length of the averaging.
    std::int64_t FPmaxSearchBegin = 50000;           ///< Where the search for the maximum begins.
    std::int64_t FPmaxSearchEnd = 0;                 ///< Where it ends.
    std::int64_t FPSlopeInterval = 0;                ///< Interval of the slope measurement.
    double FPfastAmplitude = 0.0;                    ///< Amplitude of detection.
    bool FPfastAutoAdjust = true;                    ///< Whether the detection adjusts itself.
    double FPfastAutoAdjustFactor = 0.0;             ///< Factor of that adjustment.
    std::int64_t FPfastAutoAdjustTime = 0;           ///< Time of that adjustment.
    std::int64_t FPfastRiseTimeMin = 0;              ///< Least rise time.
    std::int64_t FPfastRiseTimeMax = 0;              ///< Greatest rise time.
    std::int32_t FPfastSlopeRangeMin = 0;            ///< Lower limit of the slope range.
    std::int32_t FPfastSlopeRangeMax = 0;            ///< Upper limit of the slope range.

    /// Sets `AnalyzingDate` to the current time, and writes the element `PropertyAnalyzer` with every well.
    void Save(CXmlFileArchive& archive) override;

    /// The same with only the wells in `wellIDs`, in that order. Skips an ID without marks; writes an ID that
    /// is listed twice twice.
    void SaveWells(CXmlFileArchive& archive, const std::vector<std::int32_t>& wellIDs);

    /// Reads on to the end tag of `PropertyAnalyzer`. A task in the file replaces that task's marks; others stay.
    /// Recordings are numbered in document order.
    void Load(CXmlFileArchive& archive) override;

    /// Replaces the marks of a task by default ones: `recordings` of them, none if that is below 1, each with these
    /// wells.
    void InitTask(enTask task, std::int32_t recordings, const std::vector<std::int32_t>& wellIDs);

    /// Returns the mark of a response; `enAnalysisMark::Undefined` if there is none.
    enAnalysisMark GetResponseMark(enTask task, std::int32_t recording, std::int32_t wellID,
                                   enResponseType response) const;

    /// Returns whether a well counts in a recording; false if it has no marks there.
    bool IsWellAnalyzed(enTask task, std::int32_t recording, std::int32_t wellID) const;

    /// @name The words of `FPAveIntervalType`
    /// An unknown number or word is `enFPAveIntervalType::Undefined`, "Undefined".
    /// @{
    static std::string FPAveIntervalTypeToString(enFPAveIntervalType type);         ///< The word of a number.
    static enFPAveIntervalType StringToFPAveIntervalType(const std::string& word);  ///< The number of a word.
    /// @}
};
