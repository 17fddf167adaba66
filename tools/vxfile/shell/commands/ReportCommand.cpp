#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FolderReport.h"
#include "tools/vxfile/shell/PlateReport.h"
#include "tools/vxfile/system/ExitStatus.h"
#include "tools/vxfile/system/Output.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

constexpr CCommandText kReportText = {
    .name = "report",
    .purpose = "Write one HTML page that shows the results of a plate",
    .details =
        "The page shows the plate as a heat map, the dose-response of each response and, for a chosen well, averaged "
        "beats and beat intervals. With the settings, wells are at their places and excluded values are marked. With "
        "the recording, the page has the signal, too. Files next to the results that have their Guid are used by "
        "themselves. The page is a single file that loads nothing. For a folder, or several results files, "
        "writes a folder with a page for each and an index; pages whose files haven't changed stay.",
    .example = "vxfile report run.vxr --settings run.vxs --raw run.vxd -o run.html",
    .statuses =
        "  0  the page was written\n"
        "  1  written, but from damaged files or those of different runs; the page says so\n"
        "  2  not written, or it exists already; nothing was replaced. With an index, also if\n"
        "     some plates can't be read; the index has the reason",
};

class CReportCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kReportText; }

    std::vector<COption> Options() override {
        return {
            {.names = "RESULTS",
             .target = &m_results,
             .text = "The results file, or several, or folders",
             .isRequired = true},
            {.names = "--settings",
             .target = &m_settings,
             .text = "The settings file of the same run",
             .value = "FILE"},
            {.names = "--raw", .target = &m_raw, .text = "The raw data file of the same run", .value = "FILE"},
            {.names = "-o,--output",
             .target = &m_output,
             .text = "The page, such as run.html, or - for standard output; for several, a folder",
             .isRequired = true,
             .value = "PAGE"},
            {.names = "--force", .target = &m_force, .text = "Replace existing pages"},
        };
    }

    int Run() override {
        const bool isOne = m_results.size() == 1 && !std::filesystem::is_directory(m_results.front());
        return isOne ? WritePage(m_results.front()) : WriteFolder();
    }

 private:
    int WritePage(const std::string& results) {
        const CRunPaths paths = WithNeighbours({results, m_settings, m_raw});
        COutput output({.path = m_output, .sources = {results, paths.settings, paths.recording}, .replace = m_force});
        const CPlateReport report = MakePlateReport(paths);
        output.Write(report.page);
        output.Finish();
        COutput* const finished = &output;
        COutput::Commit({&finished, 1});
        std::ranges::for_each(report.notes, Complain);
        return report.isSound && report.notes.empty() ? kSound : kFindings;
    }

    int WriteFolder() {
        if (!m_settings.empty() || !m_raw.empty())
            throw CFailure(
                "--settings and --raw are files of one run, so they can't be given for several; put them next "
                "to the results, with the same Guid.");
        const std::vector<std::string> results = ResultsIn(m_results);
        if (results.empty()) throw CFailure(m_results.front() + " has no results files; name one, or another folder.");
        return ReportOnFolder(results, m_output, m_force);
    }

    std::vector<std::string> m_results;
    std::string m_settings;
    std::string m_raw;
    std::string m_output;
    bool m_force = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeReportCommand() { return std::make_unique<CReportCommand>(); }

}  // namespace vxfile
