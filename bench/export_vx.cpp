// The export of a whole plate: 54 wells at 8 doses, averages of 2,000 samples, 300 beats, a workbook for each well.
// usage: export_vx write FOLDER/NAME.xls AVERAGES
#include <vxfileio/frame/VXFileIO.h>

#include <cstdlib>
#include <string>

#include "Measure.h"
#include "ResultsTree.h"

int main(int argc, char** argv) {
    constexpr int kExportDoses = 8;
    if (argc != 4) return 2;
    CPropRecordPlate plate;
    std::vector<std::int32_t> wells;
    std::vector<std::string> labels;
    for (int id = 0; id < kWells; ++id) {
        wells.push_back(kFirstWell + id);
        labels.push_back("W" + std::to_string(id));
        plate.Data.AddWell(wells.back(), 0, 0, id, labels.back());
    }
    for (int dose = 0; dose < kExportDoses; ++dose)
        plate.Data.Series.push_back(1000U * static_cast<unsigned>(dose + 1));
    CPropAnalyzer analyzer;
    analyzer.InitTask(enTask::Series, kExportDoses, wells);
    CResults results;
    results.SetFPAverage(static_cast<std::uint32_t>(std::atoi(argv[3])), 10, 25);
    results.Init(1, enTask::Series, "Series", plate.Data.Series, wells, labels);
    for (int dose = 0; dose < kExportDoses; ++dose) {
        for (int id = 0; id < kWells; ++id) {
            CResultsWell& well = *results.GetWellResults(enTask::Series, dose, kFirstWell + id);
            well.AverageCount = 1;
            for (int i = 0; i < kTimes; ++i)
                well.FPfastDetectionTimes.push_back(TimeOf(dose, id, i));
            for (std::size_t i = 0; i < well.Average.size(); ++i)
                well.Average[i] = SampleOf(dose, id, static_cast<int>(i)) / 1000;
            for (const enResponseType type : AllResponseTypes())
                well.SetResults(type, enValueType::Plain, ResponseOf(dose, id, static_cast<int>(type)));
        }
    }
    CVXFileIO io;
    CIResultsExport& exporter = *io.GetResultsExport();
    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(&analyzer);
    exporter.SetPropertyRecordPlate(&plate);
    Measure([&] { exporter.ExportExcel(argv[2]); });
    return 0;
}
