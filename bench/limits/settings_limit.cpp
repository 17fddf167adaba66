// Writes or reads settings files, handling only the unavoidable digits and words. The date of writing is arbitrary.
// usage: settings_limit write|read FILE SCALE TIMES
#include "../Measure.h"
#include "../SettingsTree.h"
#include "Blocks.h"
#include "SettingsText.h"

namespace {

template <class Way>
void Number(Way& way, std::string_view ahead, auto& value) {
    way.Text(ahead);
    way.Number(value);
}

template <class Way>
void PlateWell(Way& way, CSettings::CWell& well) {
    Number(way, "<Well><WellID>", well.id);
    Number(way, "</WellID><ChID>", well.channel);
    way.Text("</ChID><Label>");
    way.Label(well.label);
    Number(way, "</Label><PlateColumn>", well.column);
    Number(way, "</PlateColumn><PlateRow>", well.row);
    Number(way, "</PlateRow><State>", well.state);
    way.Text("</State></Well>");
}

template <class Way>
void MarkedWell(Way& way, CSettings::CRecording& recording, int id) {
    CSettings::CMarks& marks = recording[id];
    Number(way, "<Well><WellID>", id);
    Number(way, "</WellID><Analyze>", marks.analyze);
    way.Text("</Analyze><Responses Size=\"3\"><Na-Amplitude>");
    way.Word(marks.marks[0], kMarks, MarkOf);
    way.Text("</Na-Amplitude><Na-Slope>");
    way.Word(marks.marks[1], kMarks, MarkOf);
    way.Text("</Na-Slope><QT-Interval>");
    way.Word(marks.marks[2], kMarks, MarkOf);
    way.Text("</QT-Interval></Responses></Well>");
}

template <class Way>
void Go(Way way, CSettings& settings) {
    Size(way, kAhead, settings.wells);
    for (CSettings::CWell& well : settings.wells)
        PlateWell(way, well);
    Size(way, "</Wells><PipetMode>NotDefined</PipetMode><Series Size=\"", settings.doses);
    for (std::uint64_t& dose : settings.doses) {
        Number(way, "<Dose>", dose);
        way.Text("</Dose>");
    }
    way.Text(kBehindDoses);
    settings.tasks.resize(4);
    for (std::size_t task = 0; task < 4; ++task) {
        way.Text("<Task><TaskName>");
        way.Text(kTasks[task]);
        Size(way, "</TaskName><Recordings Size=\"", settings.tasks[task]);
        for (int number = 0; CSettings::CRecording & recording : settings.tasks[task]) {
            Number(way, "<Recording><Recording>", number);
            way.Text("</Recording><Wells Size=\"54\">");
            for (const CSettings::CWell& well : settings.wells)
                MarkedWell(way, recording, well.id);
            way.Text("</Wells></Recording>");
            ++number;
        }
        way.Text("</Recordings></Task>");
    }
    way.Text(kBehindTasks);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const bool writes = argv[1][0] == 'w';
    const CSettings made = MakeSettings(std::atoi(argv[3]));
    CSettings settings = writes ? made : CSettings();
    Measure([&] {
        for (int i = 0; i < std::atoi(argv[4]); ++i) {
            if (!writes) settings = CSettings();
            writes ? Go(CWriting(FileOf(argv[2], i).c_str()), settings) : Go(CReading(argv[2]), settings);
        }
    });
    return settings == made ? 0 : 1;
}
