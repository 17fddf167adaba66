#include "verify/document/XmlVerify.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "verify/Text.h"
#include "verify/WholeText.h"
#include "verify/document/XmlTokens.h"
#include "verify/document/XmlValueJudge.h"
#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"
#include "vxfileio/xmlarchive/XmlText.h"

namespace vxfile {

namespace {

constexpr std::string_view kDeclaration = R"(<?xml version="1.0" ?>)";

using EToken = CXmlToken::EKind;
using vxfileio::xmlarchive::CXmlElement;
using vxfileio::xmlarchive::EXmlKind;
using vxfileio::xmlarchive::kRootElement;

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

/// Walks a document and its rules in parallel. The rules are at most a dozen elements deep, and unknown elements are
/// skipped without recursion, so no document can make the stack overflow.
class CXmlVerifier {
 public:
    CXmlVerifier(const std::string& path, std::span<const CXmlElement> rules, const CReach& reach)
        : m_document(ReadWholeText(path)),
          m_reach(reach),
          m_root{.tag = kRootElement, .kind = EXmlKind::Object, .children = rules},
          m_tokens(m_document) {}

    CFindings Verify();

 private:
    void Add(std::size_t offset, std::string found, std::string expected, std::string meaning);
    CXmlToken NextToken();
    bool Ends(const CXmlElement& rule, const CXmlToken& token);

    void JudgeDeclaration();
    bool JudgeRoot(const CXmlToken& root);
    void JudgeElement(const CXmlElement& rule, const CXmlToken& start);
    void JudgeAttributes(const CXmlElement& rule, const CXmlToken& start);
    void JudgeValue(const CXmlElement& rule, const CXmlToken& start);
    void JudgeText(const CXmlElement& rule, std::string_view text, std::size_t offset);
    void JudgeObject(const CXmlElement& rule);
    std::size_t JudgeChild(const CXmlElement& rule, const CXmlToken& start, std::size_t next);
    void AddMissing(const CXmlElement& rule, std::size_t from, std::size_t to, std::size_t offset);
    void JudgeList(const CXmlElement& rule, const CXmlToken& start);
    void Skip(const CXmlToken& start);

    std::string m_document;
    const CReach& m_reach;
    CXmlElement m_root;
    CXmlTokens m_tokens;
    CFindings m_findings;
    std::vector<std::string> m_path;
    bool m_broken = false;          ///< The document ended too early; reported once.
    std::string_view m_trueBool;    ///< The tag of the last bool of the current object, if it was true.
    std::size_t m_lastEntries = 0;  ///< The number of entries of the last list.
    std::size_t m_samples = 0;      ///< The number of samples of the last average.
    std::size_t m_blanks = 0;       ///< The number of runs of blanks and line ends between tags; one finding for all.
    std::size_t m_firstBlank = 0;
};

void CXmlVerifier::Add(std::size_t offset, std::string found, std::string expected, std::string meaning) {
    std::string where;
    for (const auto& tag : m_path)
        where += (where.empty() ? "" : "/") + tag;
    m_findings.Add({where.empty() ? "document" : where, static_cast<std::int64_t>(offset), std::move(found),
                    std::move(expected), std::move(meaning)});
}

/// Returns the next tag or end. Blanks, text and comments between elements become findings.
CXmlToken CXmlVerifier::NextToken() {
    while (true) {
        const CXmlToken token = m_tokens.Next();
        m_reach(static_cast<std::int64_t>(token.offset), std::ssize(m_document));
        if (token.kind == EToken::Text && IsBlank(token.bytes)) {
            if (m_blanks++ == 0) m_firstBlank = token.offset;
        } else if (token.kind == EToken::Text) {
            Add(token.offset, Quoted(token.bytes), "nothing between two tags",
                "It belongs to no element; readers skip it.");
        } else if (token.kind == EToken::Section || token.kind == EToken::Other) {
            Add(token.offset, Quoted(token.bytes), "only elements", "Another program wrote this; readers skip it.");
        } else {
            return token;
        }
    }
}

/// Returns true if the element ends here: at its end tag, or because the document is cut or damaged.
bool CXmlVerifier::Ends(const CXmlElement& rule, const CXmlToken& token) {
    if (m_broken) return true;
    if (token.kind == EToken::End && token.tag == rule.tag) return true;
    if (token.kind == EToken::Start || token.kind == EToken::SelfClosed) return false;
    m_broken = true;
    Add(token.offset, token.kind == EToken::Nothing ? "the end of the file" : Quoted(token.bytes),
        "</" + std::string(rule.tag) + ">",
        "The document was cut or damaged here; readers return what precedes it and may misread the rest.");
    return true;
}

CFindings CXmlVerifier::Verify() {
    JudgeDeclaration();
    const CXmlToken root = NextToken();
    if (!JudgeRoot(root)) return std::move(m_findings);
    JudgeElement(m_root, root);
    if (m_blanks != 0)
        Add(m_firstBlank, "blanks or line ends, here and " + Counted(m_blanks - 1, "time") + " more",
            "nothing between two tags", "The document was edited or indented; readers skip them.");
    if (!m_broken) {
        const CXmlToken rest = m_tokens.Next();
        if (rest.kind != EToken::Nothing)
            Add(rest.offset, Quoted(rest.bytes), "the end of the file", "Readers ignore everything from here on.");
    }
    return std::move(m_findings);
}

/// Readers find the sections at any depth. Returns true if an element of any name surrounds them.
bool CXmlVerifier::JudgeRoot(const CXmlToken& root) {
    if (root.kind == EToken::Start && root.tag == kRootElement) return true;
    const bool isSection = std::ranges::find(m_root.children, root.tag, &CXmlElement::tag) != m_root.children.end();
    const bool isRenamed = root.kind == EToken::Start && !isSection;
    const bool isOver = root.kind == EToken::Nothing || root.kind == EToken::Broken;
    Add(root.offset, isOver ? "the end of the file" : Quoted(root.bytes), "<" + std::string(kRootElement) + ">",
        isRenamed ? "Readers ignore the name of the root element."
        : isOver  ? "The document was cut or damaged here; there is nothing to read."
                  : "The root element is missing. Readers read the other elements anyway; they weren't checked.");
    if (isOver) m_findings.MakeUnusable();
    if (isRenamed && m_document.find("</" + std::string(root.tag) + ">") != std::string::npos) m_root.tag = root.tag;
    return isRenamed;
}

void CXmlVerifier::JudgeDeclaration() {
    const CXmlToken first = m_tokens.Next();
    if (first.bytes == kDeclaration) return;
    Add(0, Quoted(first.bytes), Quoted(kDeclaration), "Another program wrote this; readers ignore it.");
    if (first.kind != EToken::Other) m_tokens = CXmlTokens(m_document);
}

void CXmlVerifier::JudgeElement(const CXmlElement& rule, const CXmlToken& start) {
    m_path.emplace_back(rule.tag);
    JudgeAttributes(rule, start);
    switch (rule.kind) {
        case EXmlKind::Object:
            if (start.kind == EToken::Start) {
                JudgeObject(rule);
            } else {
                AddMissing(rule, 0, rule.children.size(), start.offset);
            }
            break;
        case EXmlKind::List:
        case EXmlKind::Entries:
            JudgeList(rule, start);
            break;
        default:
            JudgeValue(rule, start);
    }
    m_path.pop_back();
}

void CXmlVerifier::JudgeAttributes(const CXmlElement& rule, const CXmlToken& start) {
    if (rule.kind == EXmlKind::List || IsBlank(start.attributes)) return;  // JudgeList checks those of a list
    // Readers of most values take the first text in double quotes.
    const bool isTaken = rule.children.empty() && !rule.isVerbatim && start.attributes.find('"') != std::string::npos;
    Add(start.offset, Quoted(start.bytes), "no attribute",
        isTaken ? "Readers take the attribute instead of the text." : "Readers ignore it.");
}

void CXmlVerifier::JudgeValue(const CXmlElement& rule, const CXmlToken& start) {
    if (start.kind == EToken::SelfClosed) {
        const std::string tag(rule.tag);
        Add(start.offset, Quoted(start.bytes), "<" + tag + "></" + tag + ">", "Readers treat both alike.");
        return;
    }
    std::string text;  // coded, also what is in a section
    CXmlToken token = m_tokens.Next();
    for (; token.kind == EToken::Text || token.kind == EToken::Section; token = m_tokens.Next()) {
        if (token.kind == EToken::Section)
            Add(token.offset, Quoted(token.bytes), "text without a CDATA section",
                "Another program wrote this; readers take the text in it.");
        if (const auto nul = token.bytes.find('\0'); nul != std::string_view::npos)
            Add(token.offset + nul, Quoted(token.bytes.substr(nul)), "no byte 0",
                "For readers the document ends here.");
        if (token.kind == EToken::Text) {
            text += token.text;
        } else {
            gd_xml_stream::PutCoded(token.text, [&](std::string_view coded) { text += coded; });
        }
    }
    JudgeText(rule, text, start.offset + start.bytes.size());
    if (token.kind == EToken::Other) {
        Add(token.offset, Quoted(token.bytes), "only a value",
            "Another program wrote this; readers take only the text before it.");
        token = NextToken();
    }
    while (!Ends(rule, token)) {
        Add(token.offset, Quoted(token.bytes), "only a value", "Readers skip elements inside a value.");
        Skip(token);
        token = NextToken();
    }
}

void CXmlVerifier::JudgeText(const CXmlElement& rule, std::string_view text, std::size_t offset) {
    if (rule.kind == EXmlKind::Bool) m_trueBool = text == "1" ? rule.tag : "";
    if (rule.kind == EXmlKind::Samples) m_samples = CountSamples(text);
    if (!rule.onlyIf.empty() && m_trueBool != rule.onlyIf) {
        if (!text.empty())
            Add(offset, Quoted(text), "nothing, since " + std::string(rule.onlyIf) + " is 0", "Readers return 0.");
        return;
    }
    if (auto fault = JudgeXmlValue(rule, text))
        Add(offset, Quoted(text), std::move(fault->expected), std::move(fault->meaning));
}

void CXmlVerifier::JudgeObject(const CXmlElement& rule) {
    std::size_t next = 0;
    const std::string_view outerBool = std::exchange(m_trueBool, {});
    CXmlToken token = NextToken();
    for (; !Ends(rule, token); token = NextToken())
        next = JudgeChild(rule, token, next);
    m_trueBool = outerBool;
    if (m_broken) return;
    const bool isEnough = next == rule.shortSize && m_lastEntries == 0;
    if (!isEnough) AddMissing(rule, next, rule.children.size(), token.offset);
}

/// Judges a child of an object after its first `next` children. Returns the number of children up to this one.
std::size_t CXmlVerifier::JudgeChild(const CXmlElement& rule, const CXmlToken& start, std::size_t next) {
    const auto found = std::ranges::find(rule.children, start.tag, &CXmlElement::tag);
    if (found == rule.children.end()) {
        Add(start.offset, Quoted(start.bytes), "one of the elements of " + std::string(rule.tag),
            "The element is unknown here; readers skip it.");
        Skip(start);
        return next;
    }
    const auto place = static_cast<std::size_t>(found - rule.children.begin());
    if (place < next) {
        Add(start.offset, Quoted(start.bytes), "this element once, and earlier",
            "It is repeated or out of order; most readers read it anyway.");
    } else {
        AddMissing(rule, next, place, start.offset);
    }
    JudgeElement(*found, start);
    return std::max(next, place + 1);
}

void CXmlVerifier::AddMissing(const CXmlElement& rule, std::size_t from, std::size_t to, std::size_t offset) {
    if (from >= to || rule.children.size() <= from) return;
    std::string tags;
    for (const auto& child : rule.children.subspan(from, to - from)) {
        if (!child.isNew) tags += (tags.empty() ? "<" : ", <") + std::string(child.tag) + ">";
    }
    if (tags.empty()) return;
    Add(offset, "no " + tags + " up to here", "all elements, in their order",
        "It is missing or comes later; readers keep the default of a missing element.");
}

void CXmlVerifier::JudgeList(const CXmlElement& rule, const CXmlToken& start) {
    const std::size_t begin = start.offset;
    const bool isAverage = rule.children.front().kind == EXmlKind::Samples;
    std::size_t entries = 0;
    m_samples = 0;
    if (start.kind == EToken::Start) {
        for (CXmlToken token = NextToken(); !Ends(rule, token); token = NextToken()) {
            const auto found = std::ranges::find(rule.children, token.tag, &CXmlElement::tag);
            if (found == rule.children.end()) {
                Add(token.offset, Quoted(token.bytes), "<" + std::string(rule.children.front().tag) + ">",
                    !isAverage     ? "The element is unknown here; readers count it as an entry."
                    : entries == 0 ? "Readers look for the samples in the first child alone, so each of them is 0."
                                   : "The element is unknown here; readers skip it.");
                Skip(token);
            } else {
                m_path.back() = std::string(rule.tag) + '[' + std::to_string(entries) + ']';
                JudgeElement(*found, token);
                ++entries;
            }
        }
        m_path.back() = rule.tag;
    }
    m_lastEntries = isAverage ? m_samples : entries;
    if (m_broken || rule.kind == EXmlKind::Entries) return;
    if (isAverage && entries != 1)
        return Add(begin, Counted(entries, "element"), "one <" + std::string(rule.children.front().tag) + '>',
                   entries == 0 ? "Readers return a zero for each sample that Size claims."
                                : "Readers take the samples of the first child alone.");
    const std::string expected = " Size=\"" + std::to_string(m_lastEntries) + '"';
    if (start.attributes != expected)
        Add(begin, Quoted(start.bytes), "<" + std::string(rule.tag) + expected + ">",
            "Size isn't the number of entries; readers rely on it.");
    if (entries == 0 && start.kind == EToken::Start)
        Add(begin, Quoted(start.bytes), "<" + std::string(rule.tag) + expected + "/>", "Readers treat both alike.");
}

/// Skips an unknown element, of any depth.
void CXmlVerifier::Skip(const CXmlToken& start) {
    if (start.kind != EToken::Start) return;
    for (std::size_t depth = 1; depth > 0;) {
        const CXmlToken token = m_tokens.Next();
        m_reach(static_cast<std::int64_t>(token.offset), std::ssize(m_document));
        if (token.kind == EToken::Nothing || token.kind == EToken::Broken) return;
        if (token.kind == EToken::Start) ++depth;
        if (token.kind == EToken::End) --depth;
    }
}

}  // namespace

CFindings VerifyDocument(const std::string& path, std::span<const CXmlElement> children, const CReach& reach) {
    return CXmlVerifier(path, children, reach).Verify();
}
CFindings VerifySettings(const std::string& path, const CReach& reach) {
    return VerifyDocument(path, vxfileio::settings::kSettingsRoot, reach);
}
CFindings VerifyResults(const std::string& path, const CReach& reach) {
    return VerifyDocument(path, vxfileio::results::kResultsRoot, reach);
}

}  // namespace vxfile
