#include <iostream>
#include <string>

#include "tools/vxfile/recover/RecoverReport.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/commands/Commands.h"
#include "tools/vxfile/system/Failure.h"

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
    .example = "vxfile recover run.vxd -o saved.vxd --cut",
    .statuses =
        "  0  the new file has all that there was\n"
        "  1  the new file is written, but something was lost, made up or in doubt\n"
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
        CRecoverReport report;
        const auto recover = [&] {
            RefuseOtherKinds();
            report = Recover(m_source, m_target, {.keepCut = m_keepCut, .replace = m_force});
        };
        if (!m_json) {
            recover();
            report.PrintText(std::cout);
            return StatusOf(report);
        }
        const std::string failure = FailureOf(recover);
        PrintJson(kText.name,
                  CJson::array({failure.empty() ? report.ToJson() : CJson{{"file", m_source}, {"error", failure}}}));
        return failure.empty() ? StatusOf(report) : kTrouble;
    }

 private:
    static int StatusOf(const CRecoverReport& report) { return report.IsComplete() ? kSound : kFindings; }

    void RefuseOtherKinds() const {
        const EFileKind kind = FileKindOf(m_source);
        if (kind == EFileKind::Empty) throw CFailure(m_source + " is empty; there is nothing to save.");
        if (kind != EFileKind::RawData && kind != EFileKind::Unknown)
            throw CFailure(m_source + " is " + ArticleAndNameOf(kind) + "; only raw data files can be recovered.");
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
