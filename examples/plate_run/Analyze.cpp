#include "Analyze.h"

#include <cstdint>
#include <string>
#include <vector>

#include "Beats.h"
#include "FieldPotential.h"
#include "Progress.h"
#include "Responses.h"
#include "Trace.h"

namespace {

constexpr enTask kTask = enTask::Series;

/// Returns the tree of results without any findings yet.
CResults MakeResults(const CISettingsReader& settings) {
    const CPropRecordPlate& plate = *settings.GetRecordPlateProperty();
    const CPropAnalyzer& analyzer = *settings.GetAnalyzerProperty();
    const std::int64_t tick = settings.GetRecordingProperty()->Tick;
    const std::int32_t compoundID = plate.GetCompoundIDs().front();  // a settings file has exactly one
    const std::vector<std::int32_t> wellIDs = plate.GetActiveCompoundWellIDs(compoundID);
    std::vector<std::string> labels;
    labels.reserve(wellIDs.size());
    for (const std::int32_t wellID : wellIDs)
        labels.push_back(plate.GetWellLabel(wellID));

    CResults results;
    results.SetFPAverage(static_cast<std::uint32_t>(analyzer.FPAverageTime / tick), tick, analyzer.PreFPfastTime);
    results.Init(compoundID, kTask, TaskToString(kTask), plate.Data.Series, wellIDs, labels);
    return results;
}

void AnalyzeWell(CResultsWell& well, const CTrace& trace, const CPropAnalyzer& analyzer) {
    well.FPfastDetectionTimes = FindBeats(trace, analyzer);
    AverageBeats(well, trace);
    FindFastPotential(well, analyzer);
    SetResponses(well, FindMaximum(well, analyzer));
}

}  // namespace

CResults AnalyzeSeries(CIRawDataReader& recorded, const CISettingsReader& settings) {
    const CPropAnalyzer& analyzer = *settings.GetAnalyzerProperty();
    CResults results = MakeResults(settings);
    const std::int32_t doses = results.GetRecordingCount(kTask);
    const std::vector<std::int32_t> wellIDs = results.GetWellIDs(kTask, 0);
    CProgress progress("Analysing", doses * std::ssize(wellIDs));
    for (const std::int32_t wellID : wellIDs) {
        for (std::int32_t dose = 0; dose < doses; ++dose) {
            // Recordings are numbered from 0 in results, and from 1 in this raw data file.
            AnalyzeWell(*results.GetWellResults(kTask, dose, wellID), ReadTrace(recorded, kTask, dose + 1, wellID),
                        analyzer);
            progress.Step();
        }
    }
    NormalizeResponses(results, kTask);
    SetCompoundMeans(results, kTask, analyzer);
    return results;
}
