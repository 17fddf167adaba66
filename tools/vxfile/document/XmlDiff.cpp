#include "tools/vxfile/document/XmlDiff.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "verify/Failure.h"
#include "verify/WholeText.h"
#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfile {

namespace {

using vxfileio::xmlarchive::CXmlElement;
using vxfileio::xmlarchive::EXmlKind;

/// More than twice the depth of any document that writers write. Limits memory, since each value keeps its path.
constexpr std::size_t kMostDepth = 32;

/// What a root can contain: a settings file has no results, and a results file no settings.
constexpr std::array kSections = {vxfileio::settings::kSettingsRoot[0], vxfileio::settings::kSettingsRoot[1],
                                  vxfileio::results::kResultsRoot[1]};

constexpr CXmlElement kRoot{.tag = vxfileio::xmlarchive::kRootElement, .kind = EXmlKind::Object, .children = kSections};

/// Collects the values of a document, as the library's readers take them, with the paths of their elements. Paths
/// number elements of the same tag.
class CXmlLeaves {
 public:
    explicit CXmlLeaves(const std::string& path) : m_path(path) {
        if (m_file.Open(path, "r") != 0) throw CFailure("Can't open " + path + "; check the name and its rights.");
    }

    std::vector<CLeaf> Gather() {
        m_archive.SkipProlog();
        while (m_archive.NextElement()) {
            if (m_archive.IsEndTag()) {
                Close();
                continue;
            }
            Open();
            if (!vxfileio::xmlarchive::HasChildren(m_archive)) Close();
        }
        return std::move(m_leaves);
    }

    /// Returns whether readers stop before the end of the root.
    bool IsDamaged() const {
        return m_levels.size() > 1 || m_archive.LastError() == gd_xml_stream::XmlError::WrongEndTag;
    }

 private:
    struct CLevel {
        std::size_t whereSize;
        const CXmlElement* rule;  ///< Null for an element that readers don't know.
        std::string text = {};
        std::int64_t claimed = 0;  ///< The `Size` of a list,
        std::int64_t entries = 0;  ///< and the number of its entries.
        bool isLeaf = true;
        std::map<std::string, std::size_t> counts = {};
    };

    void Open() {
        if (m_levels.size() > kMostDepth)
            throw CFailure(m_path + " nests elements deeper than any such file; run 'vxfile verify' for details.");
        CLevel& parent = m_levels.back();
        const std::string tag(m_archive.TagName());
        const std::size_t number = parent.counts[tag]++;
        const CXmlElement* const rule = RuleOf(parent, tag);
        CLevel level{.whereSize = m_where.size(), .rule = rule};
        ReadContent(level);
        parent.isLeaf = parent.isLeaf && IsValue(parent.rule);
        const bool areSamples = rule != nullptr && rule->kind == EXmlKind::Samples;
        parent.entries += areSamples ? std::ranges::count(level.text, ';') : 1;
        m_levels.push_back(std::move(level));
        m_where += '/' + tag;
        if (number > 0) m_where += '[' + std::to_string(number) + ']';
    }

    const CXmlElement* RuleOf(const CLevel& parent, const std::string& tag) const {
        if (m_levels.size() == 1) return &kRoot;  // readers ignore its name
        if (parent.rule == nullptr) return nullptr;
        const auto rule = std::ranges::find(parent.rule->children, tag, &CXmlElement::tag);
        return rule == parent.rule->children.end() ? nullptr : &*rule;
    }

    static bool IsValue(const CXmlElement* rule) { return rule != nullptr && rule->children.empty(); }

    /// Reads the content of the current element: a value, or the `Size` of a list.
    void ReadContent(CLevel& level) {
        if (level.rule == nullptr || level.rule->isVerbatim) {
            level.text = m_archive.GetText();
        } else if (IsValue(level.rule)) {
            m_archive.GetValue(level.text);
        } else if (level.rule->kind == EXmlKind::List) {
            gd_xml_stream::XmlValue size(std::int64_t{0});
            m_archive.GetAttribute(gd_xml_stream::kListSize, size);
            level.claimed = size.AsInt64();
        }
    }

    void Close() {
        CLevel& level = m_levels.back();
        const std::string where = m_where.substr(1);
        if (level.isLeaf) m_leaves.push_back({where, std::move(level.text)});
        if (level.rule != nullptr && level.rule->kind == EXmlKind::List && level.claimed != level.entries)
            m_leaves.push_back({where + "/Size", std::to_string(level.claimed)});
        m_where.resize(level.whereSize);
        m_levels.pop_back();
    }

    std::string m_path;
    gd_xml_stream::CFileBuffer m_file;
    CXmlFileArchive m_archive{&m_file, gd_xml_stream::kLoad, gd_xml_stream::kBlockSize};
    std::string m_where;
    std::vector<CLevel> m_levels = {{0, nullptr}};
    std::vector<CLeaf> m_leaves;
};

}  // namespace

void CompareDocuments(const std::string& left, const std::string& right, CDifferences& differences) {
    CXmlLeaves leftLeaves(left);
    CXmlLeaves rightLeaves(right);
    CompareLeaves(leftLeaves.Gather(), rightLeaves.Gather(), differences);
    if (!leftLeaves.IsDamaged() && !rightLeaves.IsDamaged()) return;
    if (ReadWholeText(left) == ReadWholeText(right)) return;
    differences.Omit((leftLeaves.IsDamaged() ? left : right) +
                     " is cut or damaged, so not all of it was compared; run 'vxfile verify' for details.");
}

}  // namespace vxfile
