#include "tools/vxfile/shell/PlateOptions.h"

#include <algorithm>
#include <limits>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "verify/Failure.h"
#include "verify/raw/RawScan.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfile {

namespace {

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
    return !m_settings.empty() || !m_doses.empty() || !std::ranges::all_of(m_wells, IsWellID);
}

CPlateView CPlateOptions::ViewOf(const std::string& path) const {
    CISettingsReader settings;
    return ViewOf({path, GuidOfRawData(path)}, {}, settings);
}

CPlateView CPlateOptions::ViewOf(const CRunFile& file, const std::map<std::int32_t, std::string>& labels,
                                 CISettingsReader& settings) const {
    CPlateView view{.choice = {.tasks = m_tasks, .doses = Doses()}, .ticksPerSecond = m_ticksPerSecond};
    ReadLabels(view, NameSettings() ? m_settings : SettingsBeside(file.path, file.guid), file, settings);
    if (!labels.empty()) view.labels.Merge(labels, file.path);
    TakeWells(view);
    return view;
}

void CPlateOptions::TakeWells(CPlateView& view) const {
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

void CPlateOptions::ReadLabels(CPlateView& view, const std::string& path, const CRunFile& file,
                               CISettingsReader& settings) {
    if (path.empty()) return;
    RequireKind(EFileKind::Settings, path);
    const std::string damage = vxfileio::xmlarchive::ReadAndReport(settings, path);
    if (!damage.empty()) view.doubts.push_back(path + ": " + damage);
    const std::string other = DifferenceOfRuns({path, settings.GetXmlFileHeader()->Guid}, file);
    if (!other.empty()) view.doubts.push_back(other + " Labels may be those of another plate.");
    view.labels = CPlateLabels(*settings.GetRecordPlateProperty(), path);
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

}  // namespace vxfile
