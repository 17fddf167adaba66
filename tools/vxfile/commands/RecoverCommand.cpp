#include "tools/vxfile/commands/RecoverCommand.h"

#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "tools/vxfile/Json.h"
#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/FileKind.h"
#include "tools/vxfile/io/Output.h"
#include "tools/vxfile/recover/RecoverReport.h"

namespace vxfile {

namespace {

constexpr CCommandText kText = {
    .name = "recover",
    .purpose = "Save what is whole in an unfinished, cut or damaged raw data file into a new one",
    .details =
        "Takes a raw data file whose writer was killed, that was cut, or that has damaged bytes, and writes a new "
        "file with everything in it that is whole: recordings that were never finished, chains behind a broken "
        "position, headers as far as they can be read. It tells per recording and well what was kept, what was "
        "lost and why. The file itself is only read.",
    .example = "vxfile recover run.vxd -o saved.vxd",
    .statuses =
        "  0  the new file has all that there was\n"
        "  1  the new file is written, but something was lost or made up\n"
        "  2  nothing was written",
};

class CRecoverCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kText; }

    void AddOptions(CLI::App& app) override {
        app.add_option("FILE", m_source, "The file to save")->required();
        app.add_option("-o,--output", m_target, "The new file")->required();
        app.add_flag("--cut", m_keepCut, "Keep a last segment that was cut, up to its last whole sample");
        app.add_flag("--force", m_force, "Replace the new file if it is there already");
        app.add_flag("--json", m_json, "Tell what was done as JSON");
    }

    int Run() override {
        RefuseWrongFiles();
        CWholeFile target(m_target, m_force);
        CRecoverReport report = Recover(m_source, target.WorkPath(), m_keepCut);
        target.Commit();
        report.target = m_target;
        if (m_json) {
            PrintJson(kText.name, CJson::array({report.ToJson()}));
        } else {
            report.PrintText(std::cout);
        }
        return report.IsComplete() ? kSound : kFindings;
    }

 private:
    void RefuseWrongFiles() const {
        const EFileKind kind = FileKindOf(m_source);
        if (kind != EFileKind::RawData && kind != EFileKind::Unknown)
            throw CFailure(m_source + " is a " + std::string(NameOf(kind)) + "; only raw data files can be recovered.");
        RefuseTarget(m_target, m_source);
        std::error_code ignored;
        if (!m_force && std::filesystem::exists(m_target, ignored))
            throw CFailure(m_target + " is there already; choose another name, or replace it with --force.");
    }

    std::string m_source;
    std::string m_target;
    bool m_keepCut = false;
    bool m_force = false;
    bool m_json = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeRecoverCommand() { return std::make_unique<CRecoverCommand>(); }

}  // namespace vxfile
