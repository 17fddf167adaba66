#include "tools/vxfile/document/XmlDiff.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"
#include "verify/WholeText.h"
#include "verify/document/XmlTokens.h"
#include "vxfileio/helpers/NumberText.h"

namespace vxfile {

namespace {

/// More than twice the depth of any document that writers write. Limits memory, since each value keeps its path.
constexpr std::size_t kMostDepth = 32;

/// The length of "&#128;".
constexpr std::size_t kLongestReference = 6;

/// Returns the decoded text of a value.
std::string Decoded(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, char>, 5> kNames = {
        {{"&quot;", '"'}, {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&apos;", '\''}}};
    std::string decoded;
    while (!text.empty()) {
        const auto starts = [&](const auto& name) { return text.starts_with(name.first); };
        const auto* const name = std::ranges::find_if(kNames, starts);
        const auto end = text.substr(0, kLongestReference).find(';');
        if (name != kNames.end()) {
            decoded += name->second;
            text.remove_prefix(name->first.size());
        } else if (text.starts_with("&#") && end != std::string_view::npos) {
            decoded += static_cast<char>(vxfileio::helpers::ParseUInt32(text.substr(2, end - 2)));
            text.remove_prefix(end + 1);
        } else {
            decoded += text.front();
            text.remove_prefix(1);
        }
    }
    return decoded;
}

/// Collects the values of a document with the paths of their elements. Paths number elements of the same tag.
class CXmlLeaves {
 public:
    CXmlLeaves(std::string path, std::string_view document) : m_file(std::move(path)), m_tokens(document) {}

    std::vector<CLeaf> Gather() {
        for (CXmlToken token = m_tokens.Next(); token.kind != CXmlToken::EKind::Nothing; token = m_tokens.Next())
            Take(token);
        return std::move(m_leaves);
    }

 private:
    struct CLevel {
        std::size_t pathSize;
        std::string text = {};
        bool hasChildren = false;
        std::map<std::string_view, std::size_t> counts = {};
    };

    void Take(const CXmlToken& token) {
        switch (token.kind) {
            case CXmlToken::EKind::Start:
                Open(token);
                break;
            case CXmlToken::EKind::SelfClosed:
                Open(token);
                Close();
                break;
            case CXmlToken::EKind::End:
                Close();
                break;
            case CXmlToken::EKind::Text:
                m_levels.back().text += Decoded(token.text);
                break;
            case CXmlToken::EKind::Section:
                m_levels.back().text += token.text;
                break;
            case CXmlToken::EKind::Broken:
                throw CFailure(m_file + " ends inside a tag; run 'vxfile verify' for details.");
            default:
                break;
        }
    }

    void Open(const CXmlToken& token) {
        if (m_levels.size() > kMostDepth)
            throw CFailure(m_file + " nests elements deeper than any such file; run 'vxfile verify' for details.");
        CLevel& parent = m_levels.back();
        parent.hasChildren = true;
        const std::size_t number = parent.counts[token.tag]++;
        m_levels.push_back({m_path.size()});
        m_path += '/' + std::string(token.tag);
        if (number > 0) m_path += '[' + std::to_string(number) + ']';
    }

    void Close() {
        if (m_levels.size() < 2)
            throw CFailure(m_file + " has an end tag without a start tag; run 'vxfile verify' for details.");
        CLevel& level = m_levels.back();
        if (!level.hasChildren) m_leaves.push_back({m_path.substr(1), std::move(level.text)});
        m_path.resize(level.pathSize);
        m_levels.pop_back();
    }

    std::string m_file;
    CXmlTokens m_tokens;
    std::string m_path;
    std::vector<CLevel> m_levels = {{0}};
    std::vector<CLeaf> m_leaves;
};

}  // namespace

void CompareDocuments(const std::string& left, const std::string& right, CDifferences& differences) {
    const std::string leftText = ReadWholeText(left);
    const std::string rightText = ReadWholeText(right);
    CompareLeaves(CXmlLeaves(left, leftText).Gather(), CXmlLeaves(right, rightText).Gather(), differences);
}

}  // namespace vxfile
