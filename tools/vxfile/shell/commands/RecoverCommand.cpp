#include <algorithm>
#include <iostream>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "recovery/Recover.h"
#include "tools/vxfile/raw/Proof.h"
#include "tools/vxfile/raw/RecoverText.h"
#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/system/Output.h"
#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "verify/raw/RawScan.h"

namespace vxfile {

namespace {

using vxfileio::helpers::CFile;
using vxfileio::recovery::CReport;

constexpr CCommandText kRecoverText = {
    .name = "recover",
    .purpose = "Save what is whole in an unfinished, cut or damaged raw data file into a new one",
    .details =
        "Takes a raw data file whose writer was killed, that was cut, or that has damaged bytes, and writes a new "
        "file with everything in it that is whole: recordings that were never finished, segments after a broken "
        "position, headers as far as they can be read. For each recording and well it says what was kept, what was "
        "lost and why. The file itself is only read.",
    .example = "vxfile recover run.vxd -o saved.vxd --cut",
    .statuses =
        "  0  the new file has all that there was\n"
        "  1  the new file is written, but something was lost, made up or in doubt\n"
        "  2  nothing was written",
};

class CRecoverCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kRecoverText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "FILE", .target = &m_source, .text = "The file to save", .isRequired = true},
            {.names = "-o,--output", .target = &m_target, .text = "The new file", .isRequired = true},
            {.names = "--cut",
             .target = &m_keepCut,
             .text = "Keep a last segment that was cut, up to its last whole sample"},
            {.names = "--force", .target = &m_force, .text = "Replace the new file if it is there already"},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
        };
        return Together(std::move(options), m_plate.Options(true));
    }

    int Run() override {
        CReport report;
        const CRecoverNames names{m_source, m_target};
        if (!m_json) {
            report = Recover();
            Print(report, names);
            return StatusOf(report);
        }
        return RunForJson(kRecoverText.name, {{"file", m_source}}, [&] {
            report = Recover();
            CJson json = ToJson(report, names, m_view);
            if (m_proof) m_proof->AddTo(json);
            PrintJson(kRecoverText.name, CJson::array({std::move(json)}));
            return StatusOf(report);
        });
    }

 private:
    int StatusOf(const CReport& report) const {
        return report.IsComplete() && (!m_proof || m_proof->IsComplete()) ? kSound : kFindings;
    }

    /// Prints the report with labels, and whose they are.
    void Print(const CReport& report, const CRecoverNames& names) const {
        std::ostringstream out;
        PrintReport(out, report, names, m_view);
        if (m_proof) m_proof->Print(out);
        const std::string text = m_view.labels.AddedTo(out.str());
        std::cout << text;
        if (text != out.str()) std::cout << SourceText(m_view) << '\n';
    }

    /// Recovers the file. Throws `CFailure` if there is nothing to save, if the target is the file itself, or if the
    /// files can't be read or written.
    CReport Recover() {
        RefuseOtherKinds();
        m_view = m_plate.ViewOf(m_source);
        CFile source;
        OpenInput(source, m_source);
        for (const auto& input : {m_source, m_view.labels.Source(), SealOf(m_source)})
            RefuseTarget(m_target, input);
        vxfileio::helpers::CReplacingFile whole;
        CreateWhole(whole, m_target, m_force);
        const auto write = [&](std::span<const std::byte> bytes) {
            if (!whole.File().Append({bytes})) RefuseWrite(m_target, whole.Failure());
        };
        CReport report = Recover(source, write);
        if (report.bytes == 0)
            throw CFailure(m_source + " holds no segment and no complete recording header; there is nothing to save.");
        if (!whole.Finish()) RefuseWrite(m_target, whole.Failure());
        if (m_plate.AreGiven()) RefuseUnknown(m_view, m_source, CRawScan(whole.WorkPath()).Recordings());
        m_proof = ProveSegments(m_source, whole.WorkPath());
        if (!whole.Commit()) RefuseWrite(m_target, whole.Failure());
        std::ranges::for_each(m_view.doubts, Complain);
        return report;
    }

    CReport Recover(const CFile& source, const vxfileio::recovery::CSink& write) const {
        CProgress searching("Searching", source.Size());
        CProgress saving("Saving", source.Size());
        const vxfileio::recovery::COptions options{
            .keepCut = m_keepCut,
            .searched = [&](std::int64_t position) { searching.Reach(position); },
            .saved = [&](std::int64_t position) { saving.Reach(position); }};
        try {
            return vxfileio::recovery::Recover(vxfileio::recovery::CFileInput(source), options, write);
        } catch (const vxfileio::recovery::CReadFailure& failure) {
            throw CFailure("Can't read " + m_source + " at byte " + std::to_string(failure.Position()) +
                           "; copy it with a program that skips bad sectors, and recover the copy.");
        }
    }

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
    CPlateOptions m_plate;
    CPlateView m_view;
    std::optional<CProof> m_proof;  ///< Nothing if the file isn't sealed.
};

}  // namespace

std::unique_ptr<CCommand> MakeRecoverCommand() { return std::make_unique<CRecoverCommand>(); }

}  // namespace vxfile
