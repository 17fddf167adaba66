// Exports a whole plate: 54 wells at 8 doses, 300 beats, averages of AVERAGES samples, one workbook per well.
// usage: export_vx write FOLDER/NAME.xls AVERAGES
#include <vxfileio/frame/VXFileIO.h>

#include <cstdlib>
#include <string>

#include "Measure.h"
#include "PlateTree.h"

namespace {

CPropRecordPlate PlateOf(const CTree& tree) {
    CPropRecordPlate plate;
    for (const auto& [id, well] : tree.recordings.front().wells)
        plate.Data.AddWell(id, 0, 0, id - kFirstWell, well.label);
    for (int dose = 0; dose < kExportDoses; ++dose)
        plate.Data.Series.push_back(1000U * static_cast<unsigned>(dose + 1));
    return plate;
}

CResults ResultsOf(const CTree& tree, const CPropRecordPlate& plate, std::uint32_t samples) {
    std::vector<std::string> labels;
    for (const auto& [id, well] : tree.recordings.front().wells)
        labels.push_back(well.label);
    CResults results;
    results.SetFPAverage(samples, static_cast<std::int64_t>(kExportTick), static_cast<std::int64_t>(kExportPre));
    results.Init(1, enTask::Series, "Series", plate.Data.Series, plate.GetAllWellIDs(), labels);
    for (int dose = 0; dose < kExportDoses; ++dose) {
        for (const auto& [id, from] : tree.recordings[static_cast<std::size_t>(dose)].wells) {
            CResultsWell& well = *results.GetWellResults(enTask::Series, dose, id);
            well.AverageCount = 1;
            well.FPfastDetectionTimes = from.times;
            well.Average = from.average;
            for (const auto& [type, value] : from.responses)
                well.SetResults(static_cast<enResponseType>(type), enValueType::Plain, value);
        }
    }
    return results;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int samples = std::atoi(argv[3]);
    const CTree tree = MakePlate(samples);
    const CPropRecordPlate plate = PlateOf(tree);
    const CResults results = ResultsOf(tree, plate, static_cast<std::uint32_t>(samples));
    CPropAnalyzer analyzer;
    analyzer.InitTask(enTask::Series, kExportDoses, plate.GetAllWellIDs());
    CVXFileIO io;
    CIResultsExport& exporter = *io.GetResultsExport();
    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(&analyzer);
    exporter.SetPropertyRecordPlate(&plate);
    Measure([&] { exporter.ExportExcel(argv[2]); });
    return 0;
}
