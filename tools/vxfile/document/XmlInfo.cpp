#include "tools/vxfile/document/XmlInfo.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "vxfileio/frame/VXFileIO.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfile {

namespace {

void AddHeader(const CXmlFileHeader& header, CPage& page) {
    page.AddText("Compound", "compoundName", header.CompoundName);
    page.AddText("Instrument", "instrument", header.VexaprobeMode);
    page.AddText("File type", "fileType", header.FileType);
    page.AddText("Program version", "programVersion", header.ProgramVersion);
    page.Add("Format version", "fileVersion", std::to_string(header.FileVersion), header.FileVersion);
    page.AddText("Recorded", "recordingDateString", header.RecordingDateString);
    page.Json()["recordingDate"] = header.RecordingDate;
    page.AddText("Name given", "fileName", header.FileName);
    page.AddText("Guid", "guid", header.Guid);
}

std::string DosesText(const std::vector<std::uint64_t>& doses) {
    std::string text;
    for (const auto dose : doses)
        text += (text.empty() ? "" : ", ") + DoseWithUnit(dose);
    return text;
}

void AddNotebook(const CPropNotebook& notebook, CPage& page) {
    page.AddText("Experiment", "experimentID", notebook.ExperimentID);
    page.AddText("Scientist", "scientist", notebook.Scientist);
    page.AddText("Operator", "operator", notebook.Operator);
    page.AddText("Comment", "comment", notebook.Comment);
}

void AddRecording(const CPropRecording& recording, CPage& page) {
    page.Add("Sample interval", "interval", std::to_string(recording.Tick) + " ticks", recording.Tick);
    page.Add("Length", "length", std::to_string(recording.RecordingTime) + " ticks", recording.RecordingTime);
    page.Add("Zero", "adZero", std::to_string(recording.ADZero), recording.ADZero);
    page.Add("Volts per AD step", "voltPerADStep",
             std::string(vxfileio::helpers::CNumberText::General(recording.VoltPerADStep).View()),
             recording.VoltPerADStep);
}

/// Adds the wells to the table and to the JSON document.
void AddPlate(const CPropRecordPlate& plate, CPage& page) {
    page.Add("Plate", "layout", PlateLayoutToString(plate.Data.Layout));
    page.Add("Doses", "series", DosesText(plate.Data.Series), plate.Data.Series);
    std::vector<CPage::CRow> table = {{"Well", "Label", "Channel", "Row", "Column", "State"}};
    CJson wells = CJson::array();
    for (const auto& well : plate.Data.Wells) {
        if (!well) continue;
        const bool isActive = well->State == PlateWell::kActive || well->State == PlateWell::kNew;
        const std::string state = well->State == PlateWell::kNew ? "new" : isActive ? "active" : "inactive";
        table.push_back({std::to_string(well->WellID), Readable(well->Label), std::to_string(well->ChID),
                         std::to_string(well->PlateRow), std::to_string(well->PlateColumn), state});
        wells.push_back({{"id", well->WellID},
                         {"label", Readable(well->Label)},
                         {"channel", well->ChID},
                         {"row", well->PlateRow},
                         {"column", well->PlateColumn},
                         {"state", well->State}});
    }
    page.Add("Wells", "wellCount", std::to_string(wells.size()), wells.size());
    page.Json()["wells"] = std::move(wells);
    page.SetTable(std::move(table));
}

void AddQualityChecks(const CPropQualityCheck& checks, CPage& page) {
    std::vector<std::string> tasks;
    std::string text;
    for (const auto& [task, check] : checks.QualityChecks) {
        tasks.push_back(Readable(check.TaskName));
        text += (text.empty() ? "" : ", ") + tasks.back();
    }
    page.Add("Quality checks", "qualityChecks", text.empty() ? "none" : text, tasks);
}

/// Adds one recording of a task to the table and the list.
void AddResults(const std::string& task, std::size_t number, const CResultsRecording& recording,
                std::vector<CPage::CRow>& table, CJson& list) {
    std::size_t beats = 0;
    std::size_t averages = 0;
    std::vector<std::int32_t> wellIDs;
    for (const auto& [wellID, well] : recording.Wells) {
        wellIDs.push_back(wellID);
        beats += well.FPfastDetectionTimes.size();
        averages += well.AverageCount == 0 ? 0 : 1;
    }
    table.push_back({task, std::to_string(number), DoseWithUnit(recording.Dose), std::to_string(wellIDs.size()),
                     std::to_string(beats), std::to_string(averages),
                     std::to_string(recording.NormalizedResponses.size())});
    list.push_back({{"task", task},
                    {"number", number},
                    {"dose", recording.Dose},
                    {"wells", wellIDs},
                    {"beats", beats},
                    {"averages", averages},
                    {"means", recording.NormalizedResponses.size()}});
}

}  // namespace

CPage InfoOfSettings(const std::string& path) {
    CPage page;
    CISettingsReader reader;
    page.SetDamage(vxfileio::xmlarchive::ReadAndReport(reader, path));
    AddHeader(*reader.GetXmlFileHeader(), page);
    AddNotebook(*reader.GetNotebookProperty(), page);
    AddRecording(*reader.GetRecordingProperty(), page);
    AddQualityChecks(*reader.GetQualityCheckProperty(), page);
    AddPlate(*reader.GetRecordPlateProperty(), page);
    return page;
}

CPage InfoOfResults(const std::string& path) {
    CPage page;
    CIResultsReader reader;
    page.SetDamage(vxfileio::xmlarchive::ReadAndReport(reader, path));
    AddHeader(*reader.GetXmlFileHeader(), page);
    std::vector<CPage::CRow> table = {{"Task", "Number", "Dose", "Wells", "Beats", "Averages", "Means"}};
    CJson list = CJson::array();
    const CResults& results = *reader.GetResults();
    for (const auto& [key, task] : results.Tasks) {
        for (std::size_t i = 0; i < task.Recordings.size(); ++i)
            AddResults(Readable(task.TaskName), i, task.Recordings[i], table, list);
    }
    page.Add("Tasks", "taskCount", std::to_string(results.Tasks.size()), results.Tasks.size());
    page.Add("Recordings", "recordingCount", std::to_string(list.size()), list.size());
    page.SetTable(std::move(table));
    page.Json()["recordings"] = std::move(list);
    return page;
}

}  // namespace vxfile
