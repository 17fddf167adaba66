#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "tools/vxfile/document/XmlDamage.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/commands/Commands.h"
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Output.h"
#include "tools/vxfile/system/WholeText.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/frame/VXFileIO.h"

using vxfileio::base::CExcConversion;

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr CCommandText kText = {
    .name = "export",
    .purpose = "Make the workbooks of a results file and its settings file",
    .details =
        "One workbook has the responses of all wells, and each well in the state \"new\" gets one of its own "
        "beside it, named after its label. They appear when all of them are made.",
    .example = "vxfile export run.vxr run.vxs -o run.xls",
    .statuses =
        "  0  the workbooks are there\n"
        "  1  likewise, but from damaged files or two runs, or a well has none\n"
        "  2  they couldn't be made, or one is there already; nothing was replaced",
};

void Require(EFileKind kind, const std::string& path) {
    const EFileKind found = FileKindOf(path);
    if (found != kind)
        throw CFailure(path + " is " + ArticleAndNameOf(found) + "; " + ArticleAndNameOf(kind) + " is wanted here.");
}

/// A folder beside the workbooks in which they are made, so that those in place stay until the new ones are whole.
class CWorkFolder {
 public:
    explicit CWorkFolder(const fs::path& target) {
        std::error_code error;
        for (int number = 1; m_path.empty() || fs::exists(m_path); ++number)
            m_path = target.string() + ".part" + std::to_string(number);
        fs::create_directory(m_path, error);
        if (error)
            throw CFailure("Can't write beside " + target.string() + ": " + error.message() +
                           "; choose another folder.");
    }
    ~CWorkFolder() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    CWorkFolder(const CWorkFolder&) = delete;
    CWorkFolder& operator=(const CWorkFolder&) = delete;

    const fs::path& Path() const { return m_path; }

 private:
    fs::path m_path;
};

/// A file and what is in it.
template <class CReader>
struct CInput {
    std::string path;
    CReader reader = {};
};

/// Returns a Guid as it can be compared: some programs put it into braces, some write it in capitals.
std::string BareGuid(const std::string& guid) {
    std::string bare = Lowered(guid);
    std::erase_if(bare, [](char c) { return c == '{' || c == '}'; });
    return bare;
}

/// Returns why the system refused a workbook, the first of them; empty if it refused none. A label that can't be in the
/// name of a file is no refusal of the system: such a well is left out.
std::string RefusalIn(const std::string& writeErrors) {
    std::istringstream lines(writeErrors);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("Not the name of a file: ")) return line.substr(0, line.find(", writing "));
    }
    return {};
}

class CExportCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    void AddOptions(CLI::App& app) override {
        app.add_option("RESULTS", m_results.path, "The results file")->required();
        app.add_option("SETTINGS", m_settings.path, "The settings file of the same run")->required();
        app.add_option("-o,--output", m_output, "The workbook of all wells, such as run.xls")->required();
        app.add_flag("--force", m_force, "Replace workbooks that are there already");
    }

    int Run() override {
        Require(EFileKind::Results, m_results.path);
        Require(EFileKind::Settings, m_settings.path);
        RefuseInputs(m_output);
        static_cast<void>(CWholeFile(m_output, m_force));  // what can be refused is refused before the work
        const fs::path target = m_output;
        m_settings.reader.ReadFile(m_settings.path);
        m_results.reader.ReadFile(m_results.path);
        const CWorkFolder folder(target);
        Export((folder.Path() / target.filename()).string());
        CheckInterrupt();
        const std::set<std::string> made = Move(folder.Path(), target.parent_path());
        const std::vector<std::string> doubts = Doubts(made);
        std::ranges::for_each(doubts, Complain);
        return doubts.empty() ? kSound : kFindings;
    }

 private:
    void Export(const std::string& path) {
        CIResultsExport exporter;
        exporter.SetResults(m_results.reader.GetResults());
        exporter.SetPropertyAnalyzer(m_settings.reader.GetAnalyzerProperty());
        exporter.SetPropertyRecordPlate(m_settings.reader.GetRecordPlateProperty());
        try {
            exporter.ExportExcel(path);
        } catch (const CExcConversion&) {
            throw CFailure(m_settings.path + " has a dose that is too large for the head of a column; correct it.");
        }
        const std::string refusal = RefusalIn(exporter.GetWriteError());
        if (!refusal.empty())
            throw CFailure("The workbooks can't be written: " + refusal + "; make room, or write elsewhere.");
    }

    void RefuseInputs(const std::string& target) const {
        RefuseTarget(target, m_results.path);
        RefuseTarget(target, m_settings.path);
    }

    /// Returns the names of the workbooks. Labels, which may hold anything, are part of them.
    std::set<std::string> Move(const fs::path& from, const fs::path& to) const {
        std::vector<fs::path> workbooks;
        for (const auto& entry : fs::directory_iterator(from))
            workbooks.push_back(entry.path());
        std::ranges::sort(workbooks);
        if (workbooks.empty()) throw CFailure("No workbook could be written; make room on the disk.");
        std::vector<std::unique_ptr<CWholeFile>> places;
        for (const auto& workbook : workbooks) {
            const std::string place = (to / workbook.filename()).string();
            RefuseInputs(place);
            places.push_back(std::make_unique<CWholeFile>(place, m_force));
        }
        for (std::size_t i = 0; i < workbooks.size(); ++i)
            places[i]->Take(workbooks[i].string());
        std::set<std::string> names;
        for (std::size_t i = 0; i < workbooks.size(); ++i) {
            places[i]->Commit();
            names.insert(workbooks[i].filename().string());
            std::cout << Readable((to / workbooks[i].filename()).string()) << '\n';
        }
        return names;
    }

    /// Returns what the workbooks leave in doubt, a sentence each.
    std::vector<std::string> Doubts(const std::set<std::string>& made) {
        std::vector<std::string> doubts;
        for (const auto& path : {m_results.path, m_settings.path}) {
            const std::string damage = DamageOfDocument(ReadWholeText(path));
            if (!damage.empty()) doubts.push_back(std::string(path).append(": ").append(damage));
        }
        if (!AreOfOneRun()) doubts.push_back(OtherRun());
        const std::string missing = LabelsWithout(made);
        if (!missing.empty())
            doubts.push_back(
                "There is no workbook for each well with these labels, as they are no names of files or not "
                "the only ones: " +
                missing + '.');
        return doubts;
    }

    const std::string& GuidOf(auto& input) { return input.reader.GetXmlFileHeader()->Guid; }

    /// Most programs leave the Guid out.
    bool AreOfOneRun() {
        const std::string settings = BareGuid(GuidOf(m_settings));
        const std::string results = BareGuid(GuidOf(m_results));
        return settings.empty() || results.empty() || settings == results;
    }

    std::string OtherRun() {
        return m_settings.path + " isn't of the run of " + m_results.path + ": its Guid is " +
               Readable(GuidOf(m_settings)) + ", that of the results " + Readable(GuidOf(m_results)) +
               ". Labels and doses in the workbooks may be those of another plate.";
    }

    /// Returns the labels of the wells that should have a workbook of their own, and have none.
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
