#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/document/XmlVerify.h"
#include "tools/vxfile/page/PlatePage.h"
#include "tools/vxfile/page/PlateValues.h"
#include "tools/vxfile/raw/RawVerify.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/commands/Commands.h"
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Output.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr CCommandText kText = {
    .name = "report",
    .purpose = "Write one HTML page that shows the results of a plate",
    .details =
        "The page shows the plate as a heat map, the dose-response of each response and, for a chosen well, averaged "
        "beats and beat intervals. With the settings, wells are at their places and excluded values are marked. With "
        "the recording, the page has the signal, too. It is a single file that loads nothing.",
    .example = "vxfile report run.vxr --settings run.vxs --raw run.vxd -o run.html",
    .statuses =
        "  0  the page was written\n"
        "  1  written, but from damaged files or those of different runs; the page says so\n"
        "  2  not written, or it exists already; nothing was replaced",
};

std::string StateText(const CFindings& findings) {
    if (findings.Status() == kSound) return "sound";
    const std::string count = findings.Status() == kTrouble ? "not usable" : Counted(findings.Count(), "finding");
    return findings.Kept().empty() ? count : count + ": " + Readable(findings.Kept().front().meaning);
}

class CReportCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    std::vector<COption> Options() override {
        return {
            {.names = "RESULTS", .target = &m_results, .text = "The results file", .isRequired = true},
            {.names = "--settings",
             .target = &m_settings,
             .text = "The settings file of the same run",
             .value = "FILE"},
            {.names = "--raw", .target = &m_raw, .text = "The raw data file of the same run", .value = "FILE"},
            {.names = "-o,--output",
             .target = &m_output,
             .text = "The page, such as run.html; - for standard output",
             .isRequired = true,
             .value = "PAGE"},
            {.names = "--force", .target = &m_force, .text = "Replace an existing page"},
        };
    }

    int Run() override {
        CheckFiles();
        COutput output({.path = m_output, .source = m_results, .replace = m_force});
        output.Write(MakePage());
        output.Finish();
        COutput* const finished = &output;
        COutput::Commit({&finished, 1});
        std::ranges::for_each(m_source.notes, Complain);
        return m_isSound && m_source.notes.empty() ? kSound : kFindings;
    }

 private:
    /// Checks the files. Those of other kinds, and those that the page would replace, are refused.
    void CheckFiles() {
        AddFile(EFileKind::Results, m_results, VerifyResults);
        if (!m_settings.empty()) AddFile(EFileKind::Settings, m_settings, VerifySettings);
        if (!m_raw.empty()) AddFile(EFileKind::RawData, m_raw, VerifyRawData);
    }

    void AddFile(EFileKind kind, const std::string& path, CFindings (*verify)(const std::string&)) {
        const EFileKind found = FileKindOf(path);
        if (found != kind)
            throw CFailure(path + " is " + ArticleAndNameOf(found) + "; expected " + ArticleAndNameOf(kind) + " here.");
        if (m_output != "-") RefuseTarget(m_output, path);
        const CFindings findings = verify(path);
        m_isSound = m_isSound && findings.Status() == kSound;
        std::error_code ignored;
        const auto size = static_cast<std::int64_t>(fs::file_size(path, ignored));
        m_source.files.push_back({Readable(fs::path(path).filename().string()), std::string(NameOf(kind)),
                                  SizeText(size), StateText(findings), findings.Status() == kSound});
        CheckInterrupt();
    }

    std::string MakePage() {
        CIResultsReader results;
        CISettingsReader settings;
        CIRawDataReader recording;
        results.ReadFile(m_results);
        m_source.header = results.GetXmlFileHeader();
        m_source.results = results.GetResults();
        if (!m_settings.empty()) {
            settings.ReadFile(m_settings);
            m_source.settings = &settings;
            CompareRuns(settings.GetXmlFileHeader()->Guid, m_settings);
        }
        if (!m_raw.empty()) {
            recording.Open(m_raw);
            m_source.recording = &recording;
            CompareRuns(recording.GetFileHdr()->Guid, m_raw);
        }
        const page::CPlateValues values = page::MakePlateValues(m_source);
        m_source.notes = values.notes;
        CheckInterrupt();
        return page::PlatePage(values);
    }

    /// Most programs leave the Guid out.
    void CompareRuns(const std::string& guid, const std::string& path) {
        const std::string other = BareGuid(guid);
        const std::string own = BareGuid(m_source.header->Guid);
        if (other.empty() || own.empty() || other == own) return;
        m_source.notes.push_back(Readable(fs::path(path).filename().string()) +
                                 " isn't of the run of the results: its Guid is " + Readable(guid) +
                                 ", that of the results " + Readable(m_source.header->Guid) + '.');
    }

    std::string m_results;
    std::string m_settings;
    std::string m_raw;
    std::string m_output;
    bool m_force = false;
    bool m_isSound = true;
    page::CPlateSource m_source;
};

}  // namespace

std::unique_ptr<CCommand> MakeReportCommand() { return std::make_unique<CReportCommand>(); }

}  // namespace vxfile
