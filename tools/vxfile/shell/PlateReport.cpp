#include "tools/vxfile/shell/PlateReport.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/page/PlatePage.h"
#include "tools/vxfile/page/PlateValues.h"
#include "tools/vxfile/page/TraceReader.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/system/ExitStatus.h"
#include "tools/vxfile/system/Interrupt.h"
#include "verify/Failure.h"
#include "verify/document/XmlVerify.h"
#include "verify/raw/RawVerify.h"
#include "vxfileio/base/FileExtensions.h"
#include "vxfileio/frame/VXFileIO.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

std::string NameOfFile(const std::string& path) { return Readable(fs::path(path).filename().string()); }

std::string StateText(const CFindings& findings) {
    if (StatusOf(findings) == kSound) return "sound";
    std::string count = StatusOf(findings) == kTrouble ? "not usable" : Counted(findings.Count(), "finding");
    if (findings.Kept().empty()) return count;
    const CFinding& first = findings.Kept().front();
    return count + ": " + Readable(first.where + ": " + first.meaning);
}

/// Makes one page.
class CPlateReporter {
 public:
    explicit CPlateReporter(CRunPaths paths) : m_paths(std::move(paths)) {}

    CPlateReport Make() {
        m_source.files.push_back(Checked(EFileKind::Results, m_paths.results, VerifyResults));
        m_results.ReadFile(m_paths.results);
        m_source.header = m_results.GetXmlFileHeader();
        m_source.results = m_results.GetResults();
        AddSettings();
        page::CPlateValues values = page::MakePlateValues(m_source);
        AddRecording(values);
        return ReportOf(values);
    }

 private:
    void AddSettings() {
        if (m_paths.settings.empty()) return;
        m_source.files.push_back(Checked(EFileKind::Settings, m_paths.settings, VerifySettings));
        const std::string damage = vxfileio::xmlarchive::ReadAndReport(m_settings, m_paths.settings);
        if (!damage.empty() && m_source.files.back().isSound)
            m_source.notes.push_back(NameOfFile(m_paths.settings) + ": " + damage);
        m_source.settings = &m_settings;
        CompareRuns(m_source.notes, m_paths.settings, m_settings.GetXmlFileHeader()->Guid);
    }

    /// Checks the raw data file and makes traces of its samples, in one pass.
    void AddRecording(page::CPlateValues& values) {
        const std::string& path = m_paths.recording;
        if (path.empty()) return;
        std::optional<CRawDataFile> file;
        std::optional<page::CTraceReader> traces;
        const std::string failure = FailureOf([&] { file.emplace(path); });
        if (file) {
            CompareRuns(values.notes, path, file->GetFileHdr().Guid);
            traces.emplace(values, *file);
        } else {
            values.notes.push_back(NameOfFile(path) + ": " + failure +
                                   " (no signal is shown; run 'vxfile recover' and name the new file with --raw)");
        }
        values.files.push_back(Checked(EFileKind::RawData, path, [&](const std::string&, const CReach& reach) {
            return traces ? VerifyWithSamples(path, *traces, reach) : VerifyRawData(path, reach);
        }));
    }

    CPlateReport ReportOf(const page::CPlateValues& values) const {
        CheckInterrupt();
        CPlateReport report{page::PlatePage(values), page::IndexedPlateOf(values), values.notes, m_isSound};
        report.entry.results = NameOfFile(m_paths.results);
        report.entry.isSound = m_isSound && values.notes.empty();
        report.entry.state = report.entry.isSound ? "sound" : m_isSound ? values.notes.front() : "findings, see page";
        for (const page::CFileLine& file : values.files) {
            if (!file.isSound) report.notes.push_back(file.name + ": " + file.state);
        }
        return report;
    }

    page::CFileLine Checked(EFileKind kind, const std::string& path, auto verify) {
        RequireKind(kind, path);
        const CFindings findings = CheckWithBar(path, [&](const CReach& reach) { return verify(path, reach); });
        m_isSound = m_isSound && StatusOf(findings) == kSound;
        std::error_code ignored;
        const auto size = static_cast<std::int64_t>(fs::file_size(path, ignored));
        CheckInterrupt();
        return {NameOfFile(path), std::string(NameOf(kind)), SizeText(size), StateText(findings),
                StatusOf(findings) == kSound};
    }

    void CompareRuns(std::vector<std::string>& notes, const std::string& path, const std::string& guid) {
        const std::string sentence =
            DifferenceOfRuns({NameOfFile(path), guid}, {NameOfFile(m_paths.results), m_source.header->Guid});
        if (!sentence.empty()) notes.push_back(sentence);
    }

    CRunPaths m_paths;
    CIResultsReader m_results;
    CISettingsReader m_settings;
    bool m_isSound = true;
    page::CPlateSource m_source;
};

}  // namespace

CRunPaths WithNeighbours(CRunPaths paths) {
    const std::string guid = GuidOfDocument(paths.results);
    if (paths.settings.empty()) paths.settings = SettingsBeside(paths.results, guid);
    if (paths.recording.empty())
        paths.recording = FileOfRunBeside(paths.results, guid, vxfileio::kRawDataExtension, GuidOfRawData);
    return paths;
}

CPlateReport MakePlateReport(const CRunPaths& paths) { return CPlateReporter(paths).Make(); }

}  // namespace vxfile
