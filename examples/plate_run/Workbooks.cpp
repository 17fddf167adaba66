#include "Workbooks.h"

#include <filesystem>

#include "Difference.h"

std::vector<std::string> ExportWorkbooks(CIResultsExport& exporter, const CISettingsReader& settings,
                                         const CResults& results, const std::string& path) {
    const CPropRecordPlate& plate = *settings.GetRecordPlateProperty();
    std::vector<std::string> paths = {path};
    const std::filesystem::path main = path;
    for (const auto& well : plate.Data.Wells) {
        const std::string name = main.stem().string() + "-" + well->Label + main.extension().string();
        if (well->State == PlateWell::kNew) paths.push_back((main.parent_path() / name).string());
    }
    for (const std::string& workbook : paths)
        std::filesystem::remove(workbook);  // so that any file found afterwards is new

    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(settings.GetAnalyzerProperty());
    exporter.SetPropertyRecordPlate(&plate);
    exporter.ExportExcel(path);
    // The export doesn't throw if it can't write a workbook.
    for (const std::string& workbook : paths)
        Expect(std::filesystem::exists(workbook), "The workbook " + workbook);
    return paths;
}
