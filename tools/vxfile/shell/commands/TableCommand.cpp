#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/document/ReadDocument.h"
#include "tools/vxfile/document/ResultsWalk.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/shell/TableForm.h"
#include "tools/vxfile/shell/commands/Commands.h"
#include "verify/Failure.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

using vxfileio::results::ColumnsOf;
using vxfileio::results::CResultsRows;
using vxfileio::results::CRowOptions;
using vxfileio::results::EResultsTable;
using vxfileio::results::ResultsTableOf;

namespace {

constexpr CCommandText kText = {
    .name = "table",
    .purpose = "Write responses, means, beats or averages as CSV, TSV, JSON lines or NPY",
    .details =
        "Writes one row per value of a results file: as text, as a JSON object per line, or as a structured array for "
        "numpy. With --settings the rows also have which wells and responses count. --columns describes the columns, "
        "their types and units. Memory doesn't grow with the file.",
    .example = "vxfile table run.vxr --settings run.vxs --what responses -o responses.csv",
    .statuses =
        "  0  all rows were written\n"
        "  1  written, but a file is cut or damaged, so that rows are missing, or the settings are\n"
        "     those of another run\n"
        "  2  nothing was written: a file can't be read or is of another kind, or the output exists",
};

class CTableCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "RESULTS", .target = &m_path, .text = "The results file", .isRequired = true},
            {.names = "--settings",
             .target = &m_settingsPath,
             .text = "The settings file of the same run",
             .value = "FILE"},
            {.names = "--what", .target = &m_what, .text = "responses (the default), means, beats or averages"},
            TicksPerSecondOption(m_ticksPerSecond),
        };
        return Together(std::move(options), m_form.Options(true));
    }

    int Run() override {
        const auto table = ResultsTableOf(m_what);
        if (!table) throw CFailure("There is no table '" + m_what + "'; choose responses, means, beats or averages.");
        const bool hasSettings = !m_settingsPath.empty();
        const auto columns = ColumnsOf(*table, hasSettings, m_ticksPerSecond != 0);
        if (m_form.Describes()) {
            WriteColumns(m_form.Form(), m_form.Target(), columns);
            return kSound;
        }
        m_form.Target().sources = {m_path, m_settingsPath};
        RequireKind(EFileKind::Results, m_path);
        const CRowOptions options = RowOptions(hasSettings);
        const auto writer =
            MakeTableWriter(m_form.Form(), m_form.Target(), columns, [&] { return CountRows(*table, options); });
        CResultsRows rows(*table, options, [&](auto row) { writer->Put(row); });
        NoteDamage(m_path, WalkResults(m_path, rows));
        writer->Commit();
        std::ranges::for_each(m_doubts, Complain);
        return m_doubts.empty() ? kSound : kFindings;
    }

 private:
    CRowOptions RowOptions(bool hasSettings) {
        if (!hasSettings) return {.ticksPerSecond = m_ticksPerSecond};
        ReadSettings();
        return {m_settings.GetRecordPlateProperty(), m_settings.GetAnalyzerProperty(), m_ticksPerSecond};
    }

    /// Reads the settings, and notes what is wrong with them.
    void ReadSettings() {
        RequireKind(EFileKind::Settings, m_settingsPath);
        NoteDamage(m_settingsPath, ReadDocument(m_settings, m_settingsPath));
        const CRunFile settings{m_settingsPath, m_settings.GetXmlFileHeader()->Guid};
        const std::string other = DifferenceOfRuns(settings, {m_path, HeadOfDocument(m_path).Guid});
        if (!other.empty()) m_doubts.push_back(other + " Labels and marks may be those of another plate.");
    }

    void NoteDamage(const std::string& path, const std::string& damage) {
        if (!damage.empty()) m_doubts.push_back(path + ": " + damage);
    }

    std::uint64_t CountRows(EResultsTable table, const CRowOptions& options) const {
        std::uint64_t count = 0;
        CResultsRows rows(table, options, [&](auto /*row*/) { ++count; });
        static_cast<void>(WalkResults(m_path, rows));
        return count;
    }

    std::string m_path;
    std::string m_settingsPath;
    std::string m_what = "responses";
    CTableForm m_form;
    double m_ticksPerSecond = 0;
    CISettingsReader m_settings;
    std::vector<std::string> m_doubts;  ///< A sentence each.
};

}  // namespace

std::unique_ptr<CCommand> MakeTableCommand() { return std::make_unique<CTableCommand>(); }

}  // namespace vxfile
