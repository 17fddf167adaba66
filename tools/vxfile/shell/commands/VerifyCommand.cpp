#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/SealCheck.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/FolderWalk.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "verify/Failure.h"
#include "verify/Findings.h"
#include "verify/document/XmlVerify.h"
#include "verify/raw/RawVerify.h"
#include "verify/workbook/WorkbookVerify.h"

namespace vxfile {

namespace {

constexpr CCommandText kVerifyText = {
    .name = "verify",
    .purpose = "Check every byte that the format of a file fixes",
    .details =
        "Each finding gives the place, what was found there, what was expected, and what that means. Detects the kind "
        "of file by its content. Compares a file that has a seal with it, byte for byte. In a folder and its "
        "subfolders, checks all files named .vxd, .vxs, .vxr or .xls, and "
        "other files of a known kind. Opens files for reading only.",
    .example = "vxfile verify run.vxd",
    .statuses =
        "  0  all files are sound\n"
        "  1  some have findings, but readers open them all\n"
        "  2  some can't be used, or weren't checked",
};

/// The most findings of one file that are printed; JSON has all that were kept.
constexpr std::size_t kMostPrinted = 50;

/// One file and what was found.
struct CVerdict {
    std::string path;
    EFileKind kind;
    CFindings findings;
    CPlateView view = {};
    std::optional<CSealVerdict> seal = std::nullopt;  ///< Nothing if the file isn't sealed.
};

/// Returns the one finding about a file that can't be checked at all.
CFindings Unusable(const char* found, const char* expected, const char* meaning) {
    CFindings findings;
    findings.Add({"file", 0, found, expected, meaning});
    findings.MakeUnusable();
    return findings;
}

CFindings VerifyEmpty(const std::string& /*path*/, const CReach& /*reach*/) {
    return Unusable("nothing", "a file of this system", "The file is empty; there is nothing to read or to recover.");
}

CFindings VerifyUnknown(const std::string& /*path*/, const CReach& /*reach*/) {
    return Unusable("an unknown beginning",
                    "the beginning of a raw data file, a settings file, a results file or a workbook",
                    "The file is of another kind, or its beginning is damaged. If it is a raw data file, run "
                    "'vxfile recover' on it.");
}

CFindings VerifyKind(EFileKind kind, const std::string& path) {
    constexpr std::array kVerify = {VerifyRawData,  VerifySettings, VerifyResults,
                                    VerifyWorkbook, VerifyUnknown,  VerifyEmpty};
    return CheckWithBar(path,
                        [&](const CReach& reach) { return kVerify[static_cast<std::size_t>(kind)](path, reach); });
}

std::string_view StatusWord(int status) {
    constexpr std::array<std::string_view, 3> kWords = {"sound", "findings", "unusable"};
    return kWords[static_cast<std::size_t>(status)];
}

std::string StatusText(const CFindings& findings) {
    const std::string count = Counted(findings.Count(), "finding");
    switch (StatusOf(findings)) {
        case kSound:
            return Green("sound");
        case kFindings:
            return Yellow(count);
        default:
            return Red("not usable") + ", " + count;
    }
}

void Print(const CVerdict& verdict) {
    const auto& labels = verdict.view.labels;
    const std::size_t elsewhere = verdict.findings.Elsewhere();
    std::cout << Readable(verdict.path) << ": " << NameOf(verdict.kind) << ", " << StatusText(verdict.findings)
              << (verdict.seal ? ", " + verdict.seal->Words() : "")
              << (elsewhere == 0 ? "" : "; " + Counted(elsewhere, "finding") + " elsewhere") << '\n';
    const auto& kept = verdict.findings.Kept();
    for (const auto& finding : std::span(kept).first(std::min(kept.size(), kMostPrinted))) {
        std::cout << "  " << Bold(labels.AddedTo(finding.where));
        if (finding.offset >= 0) std::cout << " (offset " << finding.offset << ')';
        std::cout << "\n    found:    " << finding.found << "\n    expected: " << finding.expected
                  << "\n    meaning:  " << labels.AddedTo(finding.meaning) << '\n';
    }
    if (verdict.findings.Count() > kMostPrinted)
        std::cout << "  and " << verdict.findings.Count() - kMostPrinted << " more; --json lists up to "
                  << CFindings::kMostKept << '\n';
    const auto isLabeled = [&](const CFinding& finding) { return finding.well && !labels.Of(*finding.well).empty(); };
    if (std::ranges::any_of(kept, isLabeled)) std::cout << "  " << SourceText(verdict.view) << '\n';
}

CJson ToJson(const CVerdict& verdict) {
    const auto& labels = verdict.view.labels;
    CJson findings = CJson::array();
    for (const auto& finding : verdict.findings.Kept()) {
        findings.push_back({{"where", finding.where},
                            {"offset", finding.offset < 0 ? CJson() : CJson(finding.offset)},
                            {"found", finding.found},
                            {"expected", finding.expected},
                            {"meaning", finding.meaning},
                            {"rule", finding.rule.empty() ? CJson() : CJson(finding.rule)}});
        if (!labels.AreKnown()) continue;
        findings.back()["well"] = finding.well ? CJson(*finding.well) : CJson();
        findings.back()["label"] = finding.well ? CJson(labels.Of(*finding.well)) : CJson();
    }
    CJson json = {{"path", Utf8(verdict.path)},
                  {"kind", WordOf(verdict.kind)},
                  {"status", StatusWord(StatusOf(verdict.findings))},
                  {"seal", verdict.seal ? verdict.seal->Json() : CJson()},
                  {"findingCount", verdict.findings.Count()},
                  {"findings", std::move(findings)}};
    if (labels.AreKnown()) json["settings"] = Utf8(labels.Source());
    if (verdict.findings.Elsewhere() != 0) json["findingsElsewhere"] = verdict.findings.Elsewhere();
    return json;
}

class CVerifyCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kVerifyText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "FILE", .target = &m_arguments, .text = "Files, or folders of files", .isRequired = true},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
            {.names = "--no-seal",
             .target = &m_noSeal,
             .text = "Don't compare files with their seals, which reads every byte"},
            {.names = "-q,--quiet", .target = &m_quiet, .text = "Print nothing; only set the exit status"},
        };
        return Together(std::move(options), m_plate.Options(false));
    }

    int Run() override {
        CJson files = CJson::array();
        for (const auto& entry : Entries()) {
            CJson json;
            const std::string failure =
                entry.failure.empty() ? FailureOf([&] { json = Tell(entry.path); }) : entry.failure;
            files.push_back(failure.empty() ? std::move(json) : Refuse(entry.path, failure));
        }
        if (m_json && !m_quiet) PrintJson(kVerifyText.name, std::move(files));
        if (!m_json && !m_quiet) PrintSummary();
        return m_counts[kTrouble] != 0 ? kTrouble : m_counts[kFindings] != 0 ? kFindings : kSound;
    }

 private:
    /// Checks one file. Returns its entry for the JSON document; null without --json.
    CJson Tell(const std::string& path) {
        const EFileKind kind = FileKindOf(path);
        std::optional<CSealCheck> sealCheck;
        if (!m_noSeal) sealCheck.emplace(path);
        CVerdict verdict =
            kind == EFileKind::RawData ? VerifyPlate(path) : CVerdict{path, kind, VerifyKind(kind, path)};
        if (sealCheck) verdict.seal = sealCheck->Finish(verdict.findings);
        ++m_counts[static_cast<std::size_t>(StatusOf(verdict.findings))];
        if (!m_json && !m_quiet) Print(verdict);
        return m_json ? ToJson(verdict) : CJson();
    }

    /// Checks a raw data file. Looks for settings only if there is something to say with their labels.
    CVerdict VerifyPlate(const std::string& path) const {
        CVerdict verdict{path, EFileKind::RawData, {}};
        if (m_plate.AreGiven()) {
            verdict.view = m_plate.ViewOf(path);
            RefuseUnknown(verdict.view, path);
        }
        verdict.findings =
            CheckWithBar(path, [&](const CReach& reach) { return VerifyChosen(path, verdict.view.choice, reach); });
        if (!m_plate.AreGiven() && verdict.findings.Count() != 0) verdict.view = m_plate.ViewOf(path);
        if (!m_quiet) std::ranges::for_each(verdict.view.doubts, Complain);
        return verdict;
    }

    /// Reports a file that can't be read. The others follow all the same.
    CJson Refuse(const std::string& path, const std::string& sentence) {
        ++m_counts[kTrouble];
        if (!m_json && !m_quiet) Complain(sentence);
        return {{"path", Utf8(path)}, {"error", sentence}};
    }

    std::vector<CFolderEntry> Entries() {
        std::vector<CFolderEntry> entries;
        std::error_code none;
        for (const auto& argument : m_arguments) {
            if (std::filesystem::is_directory(argument, none)) {
                CFolderContent content = WalkFolder(argument);
                std::ranges::move(content.entries, std::back_inserter(entries));
                m_passedOver += content.passedOver;
            } else {
                entries.push_back({argument});
            }
        }
        if (entries.empty())
            throw CFailure(m_arguments.front() + " has no file of a known kind; name the files directly.");
        return entries;
    }

    void PrintSummary() const {
        const std::size_t all = m_counts[0] + m_counts[1] + m_counts[2];
        if (all < 2 && m_passedOver == 0) return;
        std::cout << Counted(all, "file") << ": " << m_counts[kSound] << " sound, " << m_counts[kFindings]
                  << " with findings, " << m_counts[kTrouble] << " not usable";
        if (m_passedOver != 0) std::cout << "; " << Counted(m_passedOver, "other file") << " skipped";
        std::cout << '\n';
    }

    std::vector<std::string> m_arguments;
    bool m_json = false;
    bool m_noSeal = false;
    bool m_quiet = false;
    CPlateOptions m_plate;
    std::array<std::size_t, 3> m_counts{};  ///< The number of files, and of unreadable folders, by status.
    std::size_t m_passedOver = 0;           ///< The number of other files in folders.
};

}  // namespace

std::unique_ptr<CCommand> MakeVerifyCommand() { return std::make_unique<CVerifyCommand>(); }

}  // namespace vxfile
