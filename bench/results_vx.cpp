// Writes or reads a results file with the library; the same work as limits/results_limit.cpp.
// usage: results_vx write|read FILE SCALE
#include <vxfileio/frame/VXFileIO.h>

#include <cstdlib>
#include <string>

#include "Measure.h"
#include "ResultsTree.h"

namespace {

void Fill(CResultsWell& well, int dose, int id) {
    for (int i = 0; i < kTimes; ++i)
        well.FPfastDetectionTimes.push_back(TimeOf(dose, id, i));
    for (int i = 0; i < kSamples; ++i)
        well.Average[static_cast<std::size_t>(i)] = SampleOf(dose, id, i);
    well.AverageCount = 1;
    well.FPfastDetected = true;
    well.FPfastMaxAmp = FindingOf(dose, id, 0);
    well.FPfastMaxAmpTimeStamp = static_cast<std::int64_t>(FindingOf(dose, id, 1));
    well.FPfastMinAmp = FindingOf(dose, id, 2);
    well.FPfastMinAmpTimeStamp = static_cast<std::int64_t>(FindingOf(dose, id, 3));
    well.FPfastSlopeX0 = FindingOf(dose, id, 4);
    well.FPfastSlopeY0 = FindingOf(dose, id, 5);
    well.FPfastSlopeX1 = FindingOf(dose, id, 6);
    well.FPfastSlopeY1 = FindingOf(dose, id, 7);
    well.FPmaxType = enFPmaxType::PositivePeak;
    for (const enResponseType type : AllResponseTypes()) {
        well.SetResults(type, enValueType::Plain, ResponseOf(dose, id, static_cast<int>(type)));
        well.SetResults(type, enValueType::Normalized, ResponseOf(dose, id, static_cast<int>(type)));
    }
}

CResults MakeResults(int scale) {
    std::vector<std::uint64_t> doses;
    std::vector<std::int32_t> wells;
    std::vector<std::string> labels;
    for (int dose = 0; dose < kDoses * scale; ++dose)
        doses.push_back(1000U * static_cast<unsigned>(dose + 1));
    for (int id = 0; id < kWells; ++id) {
        wells.push_back(kFirstWell + id);
        labels.push_back("W" + std::to_string(id));
    }
    CResults results;
    results.SetFPAverage(kSamples, 10, 25);
    results.Init(1, enTask::Series, "Series", doses, wells, labels);
    for (int dose = 0; dose < kDoses * scale; ++dose) {
        for (int id = 0; id < kWells; ++id)
            Fill(*results.GetWellResults(enTask::Series, dose, kFirstWell + id), dose, id);
    }
    return results;
}

/// Converts to the tree of the other programs, for comparison with their data.
CTree TreeOf(const CResults& results) {
    CTree tree;
    for (int dose = 0; dose < results.GetRecordingCount(enTask::Series); ++dose) {
        CTree::CRecording& recording = tree.recordings.emplace_back();
        recording.dose = results.GetRecording(enTask::Series, dose)->Dose;
        for (const auto& [id, from] : results.GetRecording(enTask::Series, dose)->Wells) {
            CTree::CWell& well = recording.wells[id];
            well.label = from.WellLabel;
            well.times = from.FPfastDetectionTimes;
            well.average = from.Average;
            const double findings[] = {from.FPfastMaxAmp,  static_cast<double>(from.FPfastMaxAmpTimeStamp),
                                       from.FPfastMinAmp,  static_cast<double>(from.FPfastMinAmpTimeStamp),
                                       from.FPfastSlopeX0, from.FPfastSlopeY0,
                                       from.FPfastSlopeX1, from.FPfastSlopeY1};
            std::copy(std::begin(findings), std::end(findings), well.findings);
            for (const auto& [type, response] : from.Responses)
                well.responses[static_cast<int>(type)] = response.Value;
            for (const auto& [type, response] : from.NormalizedResponses)
                well.normalized[static_cast<int>(type)] = response.Value;
        }
    }
    return tree;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int scale = std::atoi(argv[3]);
    CVXFileIO io;
    if (argv[1][0] == 'w') {
        const CResults results = MakeResults(scale);
        Measure([&] { io.GetResultsWriter()->WriteFile(argv[2], results); });
        return 0;
    }
    Measure([&] { io.GetResultsReader()->ReadFile(argv[2]); });
    return IsWhole(TreeOf(*io.GetResultsReader()->GetResults()), scale) ? 0 : 1;
}
