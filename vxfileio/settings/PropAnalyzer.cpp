#include "vxfileio/settings/PropAnalyzer.h"

#include "vxfileio/base/EnumerationWords.h"
#include "vxfileio/helpers/FileTime.h"
#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

using vxfileio::base::ValueOf;

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CPropAnalyzer> {
    using Analyzer = CPropAnalyzer;
    static constexpr std::string_view kElement = settings::kAnalyzerElement;

    /// Ahead of the date's text and the marks, and behind them.
    static constexpr auto kHead = std::tuple{
        CTextField{"Operator", &Analyzer::Operator},
        CTextField{"Program", &Analyzer::Program},
        CTextField{"ProgramVersion", &Analyzer::ProgramVersion},
        CValueField{"AnalyzingDate", &Analyzer::AnalyzingDate},
    };
    static constexpr std::string_view kDateText = "AnalyzingDateString";  // for people: it isn't read
    static constexpr std::string_view kMarks = "AnalyzeSettings";
    static constexpr auto kParameters = std::tuple{
        CWordField{"FPAveIntervalType", &Analyzer::FPAveIntervalType},
        CValueField{"FPAveHRDefinedFactor", &Analyzer::FPAveHRDefinedFactor},
        CValueField{"PreFPfastTime", &Analyzer::PreFPfastTime},
        CValueField{"FPAverageTime", &Analyzer::FPAverageTime},
        CValueField{"FPmaxSearchBegin", &Analyzer::FPmaxSearchBegin},
        CValueField{"FPmaxSearchEnd", &Analyzer::FPmaxSearchEnd},
        CValueField{"FPSlopeInterval", &Analyzer::FPSlopeInterval},
        CValueField{"FPfastAutoAdjust", &Analyzer::FPfastAutoAdjust},
        CValueField{"FPfastAutoAdjustFactor", &Analyzer::FPfastAutoAdjustFactor},
        CValueField{"FPfastAutoAdjustTime", &Analyzer::FPfastAutoAdjustTime},
        CValueField{"FPfastAmplitude", &Analyzer::FPfastAmplitude},
        CValueField{"FPfastRiseTimeMin", &Analyzer::FPfastRiseTimeMin},
        CValueField{"FPfastRiseTimeMax", &Analyzer::FPfastRiseTimeMax},
        CValueField{"FPfastSlopeRangeMin", &Analyzer::FPfastSlopeRangeMin},
        CValueField{"FPfastSlopeRangeMax", &Analyzer::FPfastSlopeRangeMax},
    };
};

namespace {

using CForm = CXmlForm<CPropAnalyzer>;

/// The tags of the marks, from the outside in. Both a recording and its number are a `Recording`.
constexpr std::string_view kTasks = "Tasks";
constexpr std::string_view kTask = "Task";
constexpr std::string_view kTaskName = "TaskName";
constexpr std::string_view kRecordings = "Recordings";
constexpr std::string_view kRecording = "Recording";
constexpr std::string_view kWells = "Wells";
constexpr std::string_view kWell = "Well";
constexpr std::string_view kWellID = "WellID";
constexpr std::string_view kAnalyze = "Analyze";
constexpr std::string_view kResponses = "Responses";

constexpr std::int32_t kNoWell = -1;

/// The wells of a recording that are to be written, in the order in which they are.
using CChosenWells = std::vector<RecordingAnalysis::const_pointer>;

std::string Word(auto value) { return std::string(base::WordOf(value)); }

CChosenWells AllWells(const RecordingAnalysis& recording) {
    CChosenWells wells;
    wells.reserve(recording.size());
    for (const auto& well : recording)
        wells.push_back(&well);
    return wells;
}

CChosenWells TheseWells(const RecordingAnalysis& recording, const std::vector<std::int32_t>& wellIDs) {
    CChosenWells wells;
    wells.reserve(wellIDs.size());
    for (const std::int32_t wellID : wellIDs) {
        const auto well = recording.find(wellID);
        if (well != recording.end()) wells.push_back(&*well);
    }
    return wells;
}

void SaveWell(CXmlFileArchive& archive, std::int32_t wellID, const WellAnalysis& well) {
    archive.OpenChild(kWell);
    SaveValue(archive, kWellID, wellID);
    SaveValue(archive, kAnalyze, well.Analyze);
    archive.OpenChild(kResponses);
    PutList(archive, well.Responses,
            [&](const auto& response) { SaveValue(archive, Word(response.first), Word(response.second)); });
    archive.CloseElement().CloseElement();
}

void SaveRecording(CXmlFileArchive& archive, std::int32_t number, const CChosenWells& wells) {
    archive.OpenChild(kRecording);
    SaveValue(archive, kRecording, number);
    archive.OpenChild(kWells);
    PutList(archive, wells, [&](const auto* well) { SaveWell(archive, well->first, well->second); });
    archive.CloseElement().CloseElement();
}

template <class ChooseWells>
void SaveTask(CXmlFileArchive& archive, enTask task, const TaskAnalysis& recordings, ChooseWells chooseWells) {
    archive.OpenChild(kTask);
    SaveValue(archive, kTaskName, Word(task));
    archive.OpenChild(kRecordings);
    std::int32_t number = 0;
    PutList(archive, recordings,
            [&](const RecordingAnalysis& recording) { SaveRecording(archive, number++, chooseWells(recording)); });
    archive.CloseElement().CloseElement();
}

template <class ChooseWells>
void SaveAnalyzer(CXmlFileArchive& archive, CPropAnalyzer& analyzer, ChooseWells chooseWells) {
    analyzer.AnalyzingDate = helpers::GetCurrentFileTime();
    archive.OpenChild(CForm::kElement);
    PutFields(archive, analyzer, CForm::kHead);
    SaveValue(archive, CForm::kDateText, helpers::FileTimeToText(analyzer.AnalyzingDate));
    archive.OpenChild(CForm::kMarks).OpenChild(kTasks);
    PutList(archive, analyzer.AnalyzeSettings,
            [&](const auto& task) { SaveTask(archive, task.first, task.second, chooseWells); });
    archive.CloseElement().CloseElement();
    PutFields(archive, analyzer, CForm::kParameters);
    archive.CloseElement();
}

/// Reads a list up to its end tag, its entries by `load()` at their start. Whatever a list claims, without children it
/// has no end tag.
template <class Load>
void LoadList(CXmlFileArchive& archive, std::string_view tag, std::string_view entryTag, Load load) {
    if (!HasChildren(archive) || !archive.ListHasEntries()) return;
    ForEachEventUntil(archive, tag, [&] {
        if (IsStartOf(archive, entryTag)) load();
    });
}

void LoadResponse(CXmlFileArchive& archive, WellAnalysis& well) {
    if (archive.IsEndTag()) return;
    const auto response = well.Responses.find(base::ValueOf<enResponseType>(archive.TagName()));
    if (response == well.Responses.end()) return;
    std::string word;
    archive.GetValue(word);
    response->second = base::ValueOf<enAnalysisMark>(word);
}

/// Reads a well, of which what isn't in the document is as in `start`.
void LoadWell(CXmlFileArchive& archive, RecordingAnalysis& wells, const WellAnalysis& start) {
    std::int32_t wellID = kNoWell;
    archive.NextElement();
    if (archive.TagName() == kWellID) archive.GetValue(wellID);
    WellAnalysis well = start;
    ForEachEventUntil(archive, kWell, [&] {
        if (IsStartOf(archive, kAnalyze)) return archive.GetValue(well.Analyze);
        LoadResponse(archive, well);
    });
    wells.insert_or_assign(wells.end(), wellID, std::move(well));
}

void LoadRecording(CXmlFileArchive& archive, TaskAnalysis& recordings) {
    archive.NextElement();  // its number, which the order of the document tells as well
    RecordingAnalysis wells;
    const WellAnalysis start;  // made once, since copies are made faster
    ForEachEventUntil(archive, kRecording, [&] {
        if (IsStartOf(archive, kWells)) LoadList(archive, kWells, kWell, [&] { LoadWell(archive, wells, start); });
    });
    recordings.push_back(std::move(wells));
}

void LoadTask(CXmlFileArchive& archive, std::map<enTask, TaskAnalysis>& tasks) {
    archive.NextElement();
    const bool named = IsStartOf(archive, kTaskName);
    std::string name;
    if (named) archive.GetValue(name);
    TaskAnalysis recordings;
    ForEachEventUntil(archive, kTask, [&] {
        if (!IsStartOf(archive, kRecordings)) return;
        LoadList(archive, kRecordings, kRecording, [&] { LoadRecording(archive, recordings); });
    });
    if (named) tasks[base::ValueOf<enTask>(name)] = std::move(recordings);
}

void LoadMarks(CXmlFileArchive& archive, std::map<enTask, TaskAnalysis>& tasks) {
    ForEachEventUntil(archive, CForm::kMarks, [&] {
        if (IsStartOf(archive, kTasks)) LoadList(archive, kTasks, kTask, [&] { LoadTask(archive, tasks); });
    });
}

/// Returns the marks of a well, or null if there are none.
const WellAnalysis* FindWell(const std::map<enTask, TaskAnalysis>& tasks, enTask task, std::int32_t recording,
                             std::int32_t wellID) {
    const auto recordings = tasks.find(task);
    if (recordings == tasks.end()) return nullptr;
    const auto number = static_cast<std::size_t>(recording);  // below 0, it is larger than any size
    if (number >= recordings->second.size()) return nullptr;
    const RecordingAnalysis& wells = recordings->second[number];
    const auto well = wells.find(wellID);
    return well == wells.end() ? nullptr : &well->second;
}

}  // namespace

}  // namespace vxfileio::xmlarchive

void CPropAnalyzer::Save(CXmlFileArchive& archive) {
    vxfileio::xmlarchive::SaveAnalyzer(archive, *this, vxfileio::xmlarchive::AllWells);
}

void CPropAnalyzer::SaveWells(CXmlFileArchive& archive, const std::vector<std::int32_t>& wellIDs) {
    vxfileio::xmlarchive::SaveAnalyzer(archive, *this, [&](const RecordingAnalysis& recording) {
        return vxfileio::xmlarchive::TheseWells(recording, wellIDs);
    });
}

void CPropAnalyzer::Load(CXmlFileArchive& archive) {
    using vxfileio::xmlarchive::CForm;
    vxfileio::xmlarchive::ForEachEventUntil(archive, CForm::kElement, [&] {
        if (vxfileio::xmlarchive::GetField(archive, *this, CForm::kHead)) return;
        if (vxfileio::xmlarchive::GetField(archive, *this, CForm::kParameters)) return;
        if (vxfileio::xmlarchive::IsStartOf(archive, CForm::kMarks) && vxfileio::xmlarchive::HasChildren(archive))
            vxfileio::xmlarchive::LoadMarks(archive, AnalyzeSettings);
    });
}

void CPropAnalyzer::InitTask(enTask task, std::int32_t recordings, const std::vector<std::int32_t>& wellIDs) {
    RecordingAnalysis wells;
    for (const std::int32_t wellID : wellIDs)
        wells.try_emplace(wellID);
    TaskAnalysis marks(recordings < 1 ? 0 : static_cast<std::size_t>(recordings), wells);
    AnalyzeSettings[task] = std::move(marks);
}

enAnalysisMark CPropAnalyzer::GetResponseMark(enTask task, std::int32_t recording, std::int32_t wellID,
                                              enResponseType response) const {
    const WellAnalysis* const well = vxfileio::xmlarchive::FindWell(AnalyzeSettings, task, recording, wellID);
    if (well == nullptr) return enAnalysisMark::Undefined;
    const auto mark = well->Responses.find(response);
    return mark == well->Responses.end() ? enAnalysisMark::Undefined : mark->second;
}

bool CPropAnalyzer::IsWellAnalyzed(enTask task, std::int32_t recording, std::int32_t wellID) const {
    const WellAnalysis* const well = vxfileio::xmlarchive::FindWell(AnalyzeSettings, task, recording, wellID);
    return well != nullptr && well->Analyze;
}

std::string CPropAnalyzer::FPAveIntervalTypeToString(enFPAveIntervalType type) {
    return vxfileio::xmlarchive::Word(type);
}

enFPAveIntervalType CPropAnalyzer::StringToFPAveIntervalType(const std::string& word) {
    return ValueOf<enFPAveIntervalType>(word);
}
