// Writes settings files, or reads one repeatedly, with the library: often enough to measure the time.
// usage: settings_vx write|read FILE SCALE TIMES
#include <vxfileio/frame/VXFileIO.h>

#include <cstdlib>
#include <memory>

#include "Measure.h"
#include "SettingsTree.h"

namespace {

constexpr enTask kTaskIDs[] = {enTask::CompoundTest, enTask::Series, enTask::PreQC, enTask::PostQC};
constexpr enResponseType kResponseIDs[] = {enResponseType::NaAmplitude, enResponseType::NaSlope,
                                           enResponseType::QTInterval};

CPropRecordPlate MakePlate(const CSettings& settings) {
    CPropRecordPlate plate;
    plate.Data.ResetCompounds(1);
    plate.Data.Compounds[0] = std::make_unique<PlateCompound>();
    for (const CSettings::CWell& well : settings.wells) {
        plate.Data.AddWell(well.id, well.row, well.column, well.channel, well.label);
        plate.Data.Compounds[0]->Wells.push_back(well.id);
    }
    plate.Data.Series = settings.doses;
    return plate;
}

CPropAnalyzer MakeAnalyzer(const CSettings& settings) {
    CPropAnalyzer analyzer;
    for (std::size_t task = 0; task < settings.tasks.size(); ++task) {
        for (const CSettings::CRecording& wells : settings.tasks[task]) {
            RecordingAnalysis& recording = analyzer.AnalyzeSettings[kTaskIDs[task]].emplace_back();
            for (const auto& [id, marks] : wells) {
                recording[id].Analyze = marks.analyze == 1;
                for (int i = 0; i < 3; ++i)
                    recording[id].Responses[kResponseIDs[i]] = static_cast<enAnalysisMark>(marks.marks[i]);
            }
        }
    }
    return analyzer;
}

/// Converts to the tree of the other programs.
CSettings SettingsOf(const CISettingsReader& reader) {
    CSettings settings;
    settings.doses = reader.GetRecordPlateProperty()->Data.Series;
    for (const auto& well : reader.GetRecordPlateProperty()->Data.Wells)
        settings.wells.push_back(
            {well->WellID, well->ChID, well->Label, well->PlateColumn, well->PlateRow, well->State});
    for (const enTask task : kTaskIDs) {
        auto& recordings = settings.tasks.emplace_back();
        for (const RecordingAnalysis& recording : reader.GetAnalyzerProperty()->AnalyzeSettings.at(task)) {
            CSettings::CRecording& wells = recordings.emplace_back();
            for (const auto& [id, well] : recording) {
                wells[id].analyze = well.Analyze ? 1 : 0;
                for (int i = 0; i < 3; ++i)
                    wells[id].marks[i] = static_cast<int>(well.Responses.at(kResponseIDs[i]));
            }
        }
    }
    return settings;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const CSettings made = MakeSettings(std::atoi(argv[3]));
    const int times = std::atoi(argv[4]);
    if (argv[1][0] == 'w') {
        CVXFileIO io;
        CXmlFileHeader header;
        header.FileVersion = 3;
        io.GetSettingsWriter()->SetXmlFileHeader(header);
        io.GetSettingsWriter()->SetRecordPlateProperty(MakePlate(made));
        io.GetSettingsWriter()->SetAnalyzerProperty(MakeAnalyzer(made));
        Measure([&] {
            for (int i = 0; i < times; ++i)
                io.GetSettingsWriter()->WriteFile(FileOf(argv[2], i));
        });
        return 0;
    }
    std::unique_ptr<CVXFileIO> io;
    Measure([&] {
        for (int i = 0; i < times; ++i) {
            io = std::make_unique<CVXFileIO>();
            io->GetSettingsReader()->ReadFile(argv[2]);
        }
    });
    return SettingsOf(*io->GetSettingsReader()) == made ? 0 : 1;
}
