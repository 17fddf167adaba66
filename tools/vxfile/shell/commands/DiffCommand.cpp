#include <algorithm>
#include <iostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tools/vxfile/document/XmlDiff.h"
#include "tools/vxfile/raw/RawDiff.h"
#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/workbook/WorkbookDiff.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

constexpr CCommandText kDiffText = {
    .name = "diff",
    .purpose = "Show how two files of the same kind differ",
    .details =
        "Compares raw data files header by header and sample by sample, settings and results element by "
        "element, workbooks cell by cell. Ignores how the bytes are arranged.",
    .example = "vxfile diff run.vxd copy.vxd",
    .statuses =
        "  0  the contents are the same\n"
        "  1  they differ\n"
        "  2  a file can't be read, the kinds differ, or no difference was found, but some\n"
        "     content could not be compared",
};

constexpr std::size_t kMostPrinted = 50;

class CDiffCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kDiffText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "LEFT", .target = &m_left, .text = "One file", .isRequired = true},
            {.names = "RIGHT", .target = &m_right, .text = "The other", .isRequired = true},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
            {.names = "-q,--quiet", .target = &m_quiet, .text = "Print nothing; only set the exit status"},
        };
        return Together(std::move(options), m_plate.Options(true));
    }

    int Run() override {
        const bool printsJson = m_json && !m_quiet;
        return printsJson ? RunForJson(kDiffText.name, File(), [&] { return Compare(); }) : Compare();
    }

 private:
    int Compare() {
        const EFileKind kind = Kind();
        CDifferences differences;
        Compare(kind, differences);
        const std::string& omission = differences.Omission();
        if (differences.Count() == 0 && !omission.empty()) throw CFailure(omission);
        if (m_json && !m_quiet) PrintJson(kDiffText.name, CJson::array({ToJson(kind, differences)}));
        if (!m_json && !m_quiet) Print(differences);
        return differences.Count() == 0 ? kSound : kFindings;
    }

    void Compare(EFileKind kind, CDifferences& differences) {
        if (kind == EFileKind::Workbook) return CompareWorkbooks(m_left, m_right, differences);
        if (kind != EFileKind::RawData) return CompareDocuments(m_left, m_right, differences);
        m_view = m_plate.ViewOf(m_left);
        RefuseUnknown(m_view, m_left);
        if (!m_quiet) std::ranges::for_each(m_view.doubts, Complain);
        CompareRawData(m_left, m_right, differences, m_view);
    }

    EFileKind Kind() const {
        const EFileKind left = FileKindOf(m_left);
        const EFileKind right = FileKindOf(m_right);
        for (const auto& [kind, path] : {std::pair(left, m_left), std::pair(right, m_right)}) {
            if (kind == EFileKind::Empty) throw CFailure(path + " is empty; there is nothing to compare.");
            if (!IsOurs(kind)) throw CFailure(path + " isn't a file of this system; only those can be compared.");
        }
        if (left != right)
            throw CFailure(m_left + " is " + ArticleAndNameOf(left) + ", " + m_right + ' ' + ArticleAndNameOf(right) +
                           "; name two files of the same kind.");
        return left;
    }

    /// Adds labels to the wells that texts of the program name. A value of a file is in quotation marks.
    CDifference Labeled(const CDifference& difference) const {
        const auto added = [&](const std::string& text) {
            return text.starts_with('"') ? text : m_view.labels.AddedTo(text);
        };
        return {added(difference.where), added(difference.left), added(difference.right)};
    }

    void Print(const CDifferences& differences) const {
        const auto& kept = differences.Kept();
        bool isLabeled = false;
        for (const auto& original : std::span(kept).first(std::min(kept.size(), kMostPrinted))) {
            const CDifference difference = Labeled(original);
            isLabeled = isLabeled || difference.where != original.where || difference.left != original.left ||
                        difference.right != original.right;
            std::cout << Bold(Readable(difference.where)) << '\n';
            if (!difference.left.empty()) std::cout << "  < " << Readable(difference.left) << '\n';
            if (!difference.right.empty()) std::cout << "  > " << Readable(difference.right) << '\n';
        }
        if (differences.Count() > kMostPrinted)
            std::cout << "and " << Counted(differences.Count() - kMostPrinted, "more difference") << '\n';
        if (isLabeled) std::cout << SourceText(m_view) << '\n';
        if (!differences.Omission().empty()) Complain(differences.Omission());
    }

    CJson ToJson(EFileKind kind, const CDifferences& differences) const {
        CJson list = CJson::array();
        for (const auto& original : differences.Kept()) {
            const CDifference difference = Labeled(original);
            list.push_back({{"where", Readable(difference.where)},
                            {"left", Readable(difference.left)},
                            {"right", Readable(difference.right)}});
        }
        CJson json = File();
        json["kind"] = WordOf(kind);
        json["equal"] = differences.Count() == 0;
        json["differenceCount"] = differences.Count();
        json["differences"] = std::move(list);
        if (!differences.Omission().empty()) json["omission"] = differences.Omission();
        if (m_view.labels.AreKnown()) json["settings"] = Utf8(m_view.labels.Source());
        return json;
    }

    CJson File() const { return {{"left", m_left}, {"right", m_right}}; }

    std::string m_left;
    std::string m_right;
    bool m_json = false;
    bool m_quiet = false;
    CPlateOptions m_plate;
    CPlateView m_view;  ///< Of raw data files.
};

}  // namespace

std::unique_ptr<CCommand> MakeDiffCommand() { return std::make_unique<CDiffCommand>(); }

}  // namespace vxfile
