#include "tools/vxfile/commands/ExportCommand.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/FileKind.h"
#include "tools/vxfile/io/Interrupt.h"
#include "tools/vxfile/io/Output.h"
#include "vxfileio/frame/VXFileIO.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr CCommandText kText = {
    .name = "export",
    .purpose = "Make the workbooks of a results file and its settings file",
    .details =
        "One workbook has the responses of all wells, and each well in the state \"new\" gets one of its own "
        "beside it, named after its label. Workbooks of these names are replaced, all of them or none.",
    .example = "vxfile export run.vxr run.vxs -o run.xls",
    .statuses =
        "  0  the workbooks are there\n"
        "  2  they couldn't be made, and nothing was replaced",
};

void Require(EFileKind kind, const std::string& path) {
    const EFileKind found = FileKindOf(path);
    if (found != kind)
        throw CFailure(path + " is a " + std::string(NameOf(found)) + "; a " + std::string(NameOf(kind)) +
                       " is wanted here.");
}

/// A folder beside the workbooks in which they are made, so that those in place stay until the new ones are whole.
class CWorkFolder {
 public:
    explicit CWorkFolder(const fs::path& target) {
        std::error_code error;
        for (int number = 1; m_path.empty() || fs::exists(m_path); ++number)
            m_path = target.string() + ".part" + std::to_string(number);
        fs::create_directory(m_path, error);
        if (error) throw CFailure("Can't write beside " + target.string() + ": " + error.message() + ".");
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

class CExportCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    void AddOptions(CLI::App& app) override {
        app.add_option("RESULTS", m_results, "The results file")->required();
        app.add_option("SETTINGS", m_settings, "The settings file of the same run")->required();
        app.add_option("-o,--output", m_output, "The workbook of all wells, such as run.xls")->required();
    }

    int Run() override {
        Require(EFileKind::Results, m_results);
        Require(EFileKind::Settings, m_settings);
        RefuseInputs(m_output);
        const fs::path target = m_output;
        if (fs::is_directory(target)) throw CFailure(m_output + " is a folder; name the workbook in it.");
        const CWorkFolder folder(target);
        const std::size_t expected = Export((folder.Path() / target.filename()).string());
        CheckInterrupt();
        Move(folder.Path(), target.parent_path(), expected);
        return kSound;
    }

 private:
    /// Returns how many workbooks there should be by now.
    std::size_t Export(const std::string& path) const {
        CISettingsReader settings;
        CIResultsReader results;
        CIResultsExport exporter;
        settings.ReadFile(m_settings);
        results.ReadFile(m_results);
        exporter.SetResults(results.GetResults());
        exporter.SetPropertyAnalyzer(settings.GetAnalyzerProperty());
        exporter.SetPropertyRecordPlate(settings.GetRecordPlateProperty());
        exporter.ExportExcel(path);
        const auto& wells = settings.GetRecordPlateProperty()->Data.Wells;
        const auto isNew = [](const auto& well) { return well && well->State == PlateWell::kNew; };
        return 1 + static_cast<std::size_t>(std::ranges::count_if(wells, isNew));
    }

    void RefuseInputs(const std::string& target) const {
        RefuseTarget(target, m_results);
        RefuseTarget(target, m_settings);
    }

    void Move(const fs::path& from, const fs::path& to, std::size_t expected) const {
        std::vector<fs::path> workbooks;
        for (const auto& entry : fs::directory_iterator(from))
            workbooks.push_back(entry.path());
        std::ranges::sort(workbooks);
        if (workbooks.empty()) throw CFailure("No workbook could be written; make room on the disk.");
        for (const auto& workbook : workbooks)
            RefuseInputs((to / workbook.filename()).string());
        for (const auto& workbook : workbooks) {
            const fs::path place = to / workbook.filename();
            fs::rename(workbook, place);
            std::cout << place.string() << '\n';
        }
        if (workbooks.size() < expected)
            std::cerr << "vxfile: " << expected - workbooks.size()
                      << " wells have no workbook of their own: their labels are no names of files, or are the same.\n";
    }

    std::string m_results;
    std::string m_settings;
    std::string m_output;
};

}  // namespace

std::unique_ptr<CCommand> MakeExportCommand() { return std::make_unique<CExportCommand>(); }

}  // namespace vxfile
