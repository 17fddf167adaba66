#include "tools/vxfile/shell/PlateOptions.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

#include "tools/vxfile/document/ReadDocument.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/system/Failure.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

namespace {

bool IsID(const std::string& word) {
    std::int32_t id = 0;
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, id);
    return error == std::errc() && stop == end;
}

/// Returns the wells that a word means. If it means none, the failure also says what is in doubt about the settings.
std::vector<std::int32_t> WellsOf(const CPlateView& view, const std::string& word) {
    try {
        return view.labels.WellsOf(word);
    } catch (const CFailure& failure) {
        std::string sentences = failure.what();
        for (const auto& doubt : view.doubts)
            sentences += ' ' + doubt;
        throw CFailure(sentences);
    }
}

/// Returns the texts in their order, with ", " between them.
std::string Joined(const auto& items, auto text) {
    std::string joined;
    for (const auto& item : items)
        joined += (joined.empty() ? "" : ", ") + text(item);
    return joined.empty() ? "none" : joined;
}

}  // namespace

std::vector<COption> CPlateOptions::Options(bool showsTimes) {
    std::vector<COption> options = {
        {.names = "--task", .target = &m_tasks, .text = "Only recordings of this task; several with commas, as A,B"},
        {.names = "--dose",
         .target = &m_doses,
         .text = "Only recordings with this dose, as 100nM or 1uM; several with commas",
         .value = "DOSE"},
        {.names = "--well",
         .target = &m_wells,
         .text = "Only this well, by ID or label, as 11, B7 or A1-A6; several with commas",
         .value = "WELL"},
        {.names = "--settings",
         .target = &m_settings,
         .text = "The settings file of the run, for labels; by default the one next to it with its Guid",
         .value = "FILE"},
    };
    if (showsTimes) options.push_back(TicksPerSecondOption(m_ticksPerSecond));
    return options;
}

bool CPlateOptions::HasPlateWords() const {
    return !m_settings.empty() || !m_doses.empty() || !std::ranges::all_of(m_wells, IsID);
}

CPlateView CPlateOptions::ViewOf(const std::string& path) const {
    CPlateView view{.choice = {.tasks = m_tasks, .doses = Doses()}, .ticksPerSecond = m_ticksPerSecond};
    const CRunFile recording{path, GuidOfRawData(path)};
    ReadLabels(view, m_settings.empty() ? SettingsBeside(path, recording.guid) : m_settings, recording);
    ChooseWells(view);
    return view;
}

void CPlateOptions::ChooseWells(CPlateView& view) const {
    for (const auto& word : m_wells) {
        const auto wells = WellsOf(view, word);
        for (const auto well : wells) {
            if (view.choice.wells.empty() || !view.choice.HasWell(well)) view.choice.wells.push_back(well);
        }
    }
}

std::vector<std::int64_t> CPlateOptions::Doses() const {
    std::vector<std::int64_t> doses;
    for (const auto& word : m_doses) {
        const auto dose = ParseDose(word);
        if (!dose)
            throw CFailure("'" + word +
                           "' isn't a dose; write a number and pM, nM, uM, mM or M, such as 100nM, that makes whole "
                           "picomolar.");
        doses.push_back(*dose);
    }
    return doses;
}

void CPlateOptions::ReadLabels(CPlateView& view, const std::string& settings, const CRunFile& recording) {
    if (settings.empty()) return;
    RequireKind(EFileKind::Settings, settings);
    CISettingsReader reader;
    const std::string damage = ReadDocument(reader, settings);
    if (!damage.empty()) view.doubts.push_back(settings + ": " + damage);
    const std::string other = DifferenceOfRuns({settings, reader.GetXmlFileHeader()->Guid}, recording);
    if (!other.empty()) view.doubts.push_back(other + " Labels may be those of another plate.");
    view.labels = CPlateLabels(*reader.GetRecordPlateProperty(), settings);
}

std::string GuidOfRawData(const std::string& path) {
    std::string guid;
    static_cast<void>(FailureOf([&] { guid = CRawScan(path).Header().Guid; }));
    return guid;
}

COption TicksPerSecondOption(double& ticksPerSecond) {
    return {.names = "--ticks-per-second",
            .target = &ticksPerSecond,
            .text = "The ticks of the instrument in a second: adds times in seconds",
            .wanted = "a number above 0",
            .least = std::numeric_limits<double>::min()};
}

std::string SourceText(const CPlateView& view) {
    if (!view.labels.AreKnown()) return {};
    return std::string("Labels are those of ").append(Readable(view.labels.Source())).append(".");
}

void RefuseUnknownRecordings(const CPlateChoice& choice, const std::string& path,
                             const std::vector<CRecordingAt>& recordings) {
    std::set<std::string> tasks;
    std::set<std::int64_t> doses;
    for (const auto& recording : recordings) {
        tasks.insert(recording.header.TaskName);
        if (HasOrIsEmpty(choice.tasks, recording.header.TaskName)) doses.insert(recording.header.Dose);
    }
    for (const auto& task : choice.tasks) {
        if (tasks.contains(task)) continue;
        throw CFailure(std::string(path).append(" has no task ").append(task).append("; its tasks: ") +
                       Joined(tasks, Readable) + '.');
    }
    for (const auto dose : choice.doses) {
        if (!doses.contains(dose))
            throw CFailure(path + " has no recording with a dose of " + DoseText(dose) +
                           (choice.tasks.empty() ? "; its doses: " : " in the chosen tasks; their doses: ") +
                           Joined(doses, DoseText) + '.');
    }
}

void RefuseUnknown(const CPlateView& view, const std::string& path, const std::vector<CRecordingAt>& recordings) {
    RefuseUnknownRecordings(view.choice, path, recordings);
    std::set<std::int32_t> wells;
    for (const auto& recording : recordings) {
        if (!view.choice.HasRecording(recording.header)) continue;
        for (const auto& channel : recording.header.WellChannels)
            wells.insert(channel.ID);
    }
    const std::string theirs = wells.empty() ? "none" : ListText({wells.begin(), wells.end()});
    for (const auto well : view.choice.wells) {
        if (!wells.contains(well))
            throw CFailure(view.labels.AddedTo(std::string(path).append(" has no well ").append(std::to_string(well)) +
                                               " in the chosen recordings; their wells: " + theirs + '.'));
    }
}

}  // namespace vxfile
