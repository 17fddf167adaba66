#include "vxfileio/settings/PropAnalyzer.h"

#include "vxfileio/helpers/FileTime.h"
#include "vxfileio/settings/forms/AnalyzerForm.h"

namespace vxfileio::settings {

namespace {

/// Writes an analyzer with only these wells; null means all.
void SaveAnalyzer(CXmlFileArchive& archive, CPropAnalyzer& analyzer, const std::vector<std::int32_t>* wellIDs) {
    analyzer.AnalyzingDate = helpers::GetCurrentFileTime();
    SaveForm<CXmlForm<CPropAnalyzer>>(archive, analyzer, CMarksToSave<CTaskMarks>{analyzer.AnalyzeSettings, wellIDs});
}

/// Returns the marks of a well, or null if there are none.
const WellAnalysis* FindWell(const CTaskMarks& tasks, enTask task, std::int32_t recording, std::int32_t wellID) {
    const auto recordings = tasks.find(task);
    if (recordings == tasks.end()) return nullptr;
    const auto number = static_cast<std::size_t>(recording);  // below 0, it is larger than any size
    if (number >= recordings->second.size()) return nullptr;
    const RecordingAnalysis& wells = recordings->second[number];
    const auto well = wells.find(wellID);
    return well == wells.end() ? nullptr : &well->second;
}

}  // namespace

}  // namespace vxfileio::settings

void CPropAnalyzer::Save(CXmlFileArchive& archive) { vxfileio::settings::SaveAnalyzer(archive, *this, nullptr); }

void CPropAnalyzer::SaveWells(CXmlFileArchive& archive, const std::vector<std::int32_t>& wellIDs) {
    vxfileio::settings::SaveAnalyzer(archive, *this, &wellIDs);
}

void CPropAnalyzer::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }

void CPropAnalyzer::InitTask(enTask task, std::int32_t recordings, const std::vector<std::int32_t>& wellIDs) {
    RecordingAnalysis wells;
    for (const std::int32_t wellID : wellIDs)
        wells.try_emplace(wellID);
    TaskAnalysis marks(recordings < 1 ? 0 : static_cast<std::size_t>(recordings), wells);
    AnalyzeSettings[task] = std::move(marks);
}

enAnalysisMark CPropAnalyzer::GetResponseMark(enTask task, std::int32_t recording, std::int32_t wellID,
                                              enResponseType response) const {
    const WellAnalysis* const well = vxfileio::settings::FindWell(AnalyzeSettings, task, recording, wellID);
    if (well == nullptr) return enAnalysisMark::Undefined;
    const auto mark = well->Responses.find(response);
    return mark == well->Responses.end() ? enAnalysisMark::Undefined : mark->second;
}

bool CPropAnalyzer::IsWellAnalyzed(enTask task, std::int32_t recording, std::int32_t wellID) const {
    const WellAnalysis* const well = vxfileio::settings::FindWell(AnalyzeSettings, task, recording, wellID);
    return well != nullptr && well->Analyze;
}

std::string CPropAnalyzer::FPAveIntervalTypeToString(enFPAveIntervalType type) {
    return std::string(vxfileio::base::WordOf(type));
}

enFPAveIntervalType CPropAnalyzer::StringToFPAveIntervalType(const std::string& word) {
    return vxfileio::base::ValueOf<enFPAveIntervalType>(word);
}
