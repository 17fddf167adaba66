#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "tools/vxfile/system/Output.h"
#include "verify/Failure.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/export/ResultsExport.h"
#include "vxfileio/frame/VXFileIO.h"
#include "vxfileio/settings/SettingsFile.h"
#include "vxfileio/xmlarchive/DocumentKinds.h"
#include "vxfileio/xmlarchive/ReadAndReport.h"

using vxfileio::base::CExcConversion;
using vxfileio::helpers::CReplacingFile;
using vxfileio::settings::DoseWithoutText;
using vxfileio::workbook::CResultsExport;
using vxfileio::workbook::CWorkbookFailure;

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr CCommandText kExportText = {
    .name = "export",
    .purpose = "Write the workbooks for a results file and its settings file",
    .details =
        "One workbook has the responses of all wells. Each well in the state \"new\" gets its own workbook in the same "
        "folder, named after its label. They appear when all of them are complete.",
    .example = "vxfile export run.vxr run.vxs -o run.xls",
    .statuses =
        "  0  the workbooks were written\n"
        "  1  written, but from damaged files or two different runs, or a well has none\n"
        "  2  not written, or one exists already; nothing was replaced",
};

/// Workbooks have one format; a name that promises another one would mislead the programs that open it.
void RefuseOtherFormats(const fs::path& target) {
    constexpr std::array<std::string_view, 6> kOthers = {".xlsx", ".xlsm", ".xlsb", ".ods", ".csv", ".tsv"};
    if (std::ranges::find(kOthers, Lowered(target.extension().string())) == kOthers.end()) return;
    fs::path advised = fs::path(target).replace_extension();
    if (Lowered(advised.extension().string()) != ".xls") advised += ".xls";
    throw CFailure(target.string() + " would be a workbook in the format of .xls; name it " + advised.string() + '.');
}

/// A file and its content.
template <class CReader>
struct CInput {
    std::string path;
    CReader reader = {};
    std::string damage = {};  ///< What is wrong with the file.

    /// Throws `CFailure` if the system refuses to read the file to its end, since it is unknown what is missing.
    void Read() {
        damage = vxfileio::xmlarchive::ReadAndReport(reader, path);
        if (damage.starts_with(vxfileio::xmlarchive::kReadRefused))
            throw CFailure("Can't export " + path + ". " + damage + " Check the disk.");
    }
};

/// Returns whether a dose has a text with its unit.
bool HasDoseText(std::uint64_t dose) try {
    DoseToText(dose);
    return true;
} catch (const CExcConversion&) {
    return false;
}

/// Returns the heading of a column: a dose that is too large for the other units is in picomolar.
std::string DoseHead(std::uint64_t dose) { return HasDoseText(dose) ? DoseToText(dose) : std::to_string(dose) + "pM"; }

/// The workbooks of an export: all appear or none.
class CWorkbooks {
 public:
    /// Writes a workbook to a temporary file that replaces an earlier one with the same path. Throws `CFailure` if it
    /// is refused.
    void Save(YExcel::Document& document, const std::string& path, bool replace) {
        CReplacingFile& file = m_files[path];
        CreateWhole(file, path, replace);
        if (document.WriteTo(file)) return;
        if (file.Failure()) RefuseWrite(path, file.Failure());
        throw CFailure(path + " would be larger than a workbook can be; export fewer recordings.");
    }

    /// Moves all workbooks into place. Throws `CFailure` if one can't be moved; then none is moved.
    void Commit() {
        std::vector<CReplacingFile*> files;
        for (auto& [path, file] : m_files)
            files.push_back(&file);
        if (CReplacingFile::CommitAll(files)) return;
        for (const auto& [path, file] : m_files) {
            if (file.Failure()) RefuseWrite(path, file.Failure());
        }
    }

    /// Prints the paths of the workbooks, in order, and returns the names.
    std::set<std::string> Tell() const {
        std::set<std::string> names;
        for (const auto& [path, file] : m_files) {
            names.insert(fs::path(path).filename().string());
            std::cout << Readable(path) << '\n';
        }
        return names;
    }

 private:
    std::map<std::string, CReplacingFile> m_files;  ///< By path.
};

class CExportCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kExportText; }

    std::vector<COption> Options() override {
        return {
            {.names = "RESULTS", .target = &m_results.path, .text = "The results file", .isRequired = true},
            {.names = "SETTINGS",
             .target = &m_settings.path,
             .text = "The settings file of the same run",
             .isRequired = true},
            {.names = "-o,--output",
             .target = &m_output,
             .text = "The workbook of all wells, such as run.xls",
             .isRequired = true},
            {.names = "--force", .target = &m_force, .text = "Replace existing workbooks"},
        };
    }

    int Run() override {
        RequireKind(EFileKind::Results, m_results.path);
        RequireKind(EFileKind::Settings, m_settings.path);
        RefuseInputs(m_output);
        RefusePlace(m_output, m_force);
        RefuseOtherFormats(m_output);
        m_settings.Read();
        m_results.Read();
        CWorkbooks workbooks;
        Export(workbooks);
        CheckInterrupt();
        workbooks.Commit();
        const std::set<std::string> made = workbooks.Tell();
        const std::vector<std::string> doubts = Doubts(made);
        std::ranges::for_each(doubts, Complain);
        return doubts.empty() ? kSound : kFindings;
    }

 private:
    /// Writes all workbooks, which must then be committed. Checks for refusals before the work.
    void Export(CWorkbooks& workbooks) {
        const auto save = [&](YExcel::Document& document, const std::string& path) {
            CheckInterrupt();
            CheckMemory();
            RefuseInputs(path);
            workbooks.Save(document, path, m_force);
            return std::optional<CWorkbookFailure>();
        };
        CResultsExport exporter;
        exporter.SetResults(m_results.reader.GetResults());
        exporter.SetPropertyAnalyzer(m_settings.reader.GetAnalyzerProperty());
        exporter.SetPropertyRecordPlate(m_settings.reader.GetRecordPlateProperty());
        exporter.SetDoseText(DoseHead);
        exporter.Export(m_output, save);
    }

    void RefuseInputs(const std::string& target) const {
        RefuseTarget(target, m_results.path);
        RefuseTarget(target, m_settings.path);
    }

    /// Returns the doubts about the workbooks, a sentence each.
    std::vector<std::string> Doubts(const std::set<std::string>& made) {
        std::vector<std::string> doubts;
        if (!m_results.damage.empty()) doubts.push_back(m_results.path + ": " + m_results.damage);
        if (!m_settings.damage.empty()) doubts.push_back(m_settings.path + ": " + m_settings.damage);
        const auto& series = m_settings.reader.GetRecordPlateProperty()->Data.Series;
        const auto dose = std::ranges::find_if_not(series, HasDoseText);
        if (dose != series.end())
            doubts.push_back(m_settings.path + ": " +
                             DoseWithoutText(static_cast<std::size_t>(dose - series.begin()), *dose) +
                             " Its columns have it in picomolar.");
        const std::string other = DifferenceOfRuns(RunFileOf(m_settings), RunFileOf(m_results));
        if (!other.empty())
            doubts.push_back(other + " Labels and doses in the workbooks may be those of another plate.");
        const std::string missing = LabelsWithout(made);
        if (!missing.empty())
            doubts.push_back(
                "The wells with these labels have no workbook of their own, since the label can't be part of a file "
                "name or another well has it, too: " +
                missing + '.');
        return doubts;
    }

    static CRunFile RunFileOf(const auto& input) { return {input.path, input.reader.GetXmlFileHeader()->Guid}; }

    /// Returns the labels of the wells that should have a workbook and have none.
    std::string LabelsWithout(std::set<std::string> made) {
        std::string labels;
        const fs::path target = fs::path(m_output).filename();
        for (const auto& well : m_settings.reader.GetRecordPlateProperty()->Data.Wells) {
            if (!well || well->State != PlateWell::kNew) continue;
            const std::string name = target.stem().string() + '-' + well->Label + target.extension().string();
            if (made.erase(name) == 0) labels += (labels.empty() ? "" : ", ") + well->Label;
        }
        return labels;
    }

    CInput<CIResultsReader> m_results;
    CInput<CISettingsReader> m_settings;
    std::string m_output;
    bool m_force = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeExportCommand() { return std::make_unique<CExportCommand>(); }

}  // namespace vxfile
