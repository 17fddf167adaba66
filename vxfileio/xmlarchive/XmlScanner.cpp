#include "vxfileio/xmlarchive/XmlScanner.h"

#include <algorithm>
#include <utility>

namespace gd_xml_stream {

namespace {

constexpr std::string_view kSectionStart = "<![CDATA[";
constexpr std::string_view kSectionEnd = "]]>";
constexpr std::string_view kCommentEnd = "-->";

/// Up to this length a text is gone through byte by byte.
constexpr std::size_t kShortText = 64;

}  // namespace

bool XmlScanner::SkipProlog() {
    m_input.SkipWhile(kBlank);
    if (!m_input.AtEnd() && m_input.Peek() != '<') {
        m_input.Pass(1);
        return false;
    }
    // Doesn't parse comments: a "<" inside one counts like any other.
    while (m_input.SkipTo('<') && (m_input.StandsOn("<?") || m_input.StandsOn("<!")))
        m_input.Pass(1);
    return true;
}

// The functions that nearly every event uses are inline: the calls would cost a fifteenth of the time.

bool XmlScanner::Next() {
    ForgetElement();
    m_selfClosing = false;
    if (ReadEvent()) return true;
    ForgetElement();
    return false;
}

inline void XmlScanner::ForgetElement() {
    m_input.ForgetGathered();
    m_nameSize = 0;
    m_state = 0;
}

bool XmlScanner::Fail(XmlError error) {
    m_lastError = error;
    return false;
}

inline bool XmlScanner::ReadEvent() {
    if (!FindTag()) return false;
    m_input.SkipWhile(kBlank);
    if (m_input.AtEnd()) return Fail(m_open.IsEmpty() ? XmlError::EndInElement : XmlError::EndInTag);
    if (m_input.Peek() != '/') return ReadPlainLeaf() || ReadStartTag();
    m_input.Pass(1);
    return ReadEndTag();
}

/// Moves past the "<" of the next tag. Skips comments and text that belongs to no element.
inline bool XmlScanner::FindTag() {
    if (!m_tagTaken && m_input.AtEnd()) return false;
    while (true) {
        if (!std::exchange(m_tagTaken, false)) {
            if (!m_input.SkipTo('<')) return m_open.IsEmpty() ? false : Fail(XmlError::EndInElement);
            m_input.Pass(1);
        }
        if (m_input.Peek() != '!') return true;
        if (!SkipComment() || m_lastError != XmlError::None) return false;
    }
}

/// Moves from the "!" of a comment or declaration to the next "<".
bool XmlScanner::SkipComment() {
    m_input.Pass(1);
    if (m_input.StandsOn("--")) {
        m_input.Pass(2);
        m_input.SkipToText(kCommentEnd);
    }
    if (m_input.SkipTo('<')) return true;
    return Fail(m_input.EndsInNul() ? XmlError::EndInElement : XmlError::EndInComment);
}

inline bool XmlScanner::ReadEndTag() {
    m_input.SkipWhile(kBlank);
    if (m_input.AtEnd()) return Fail(XmlError::EndInTag);
    m_input.GatherWhile(kEndName);
    if (m_open.IsEmpty() || m_open.Top() != Element()) return Fail(XmlError::WrongEndTag);
    m_open.Pop();
    m_nameSize = Element().size();
    if (!m_input.SkipTo('>')) return Fail(XmlError::EndInElement);
    m_state = XmlState::kEndTag;
    return true;
}

/// Reads an element of the form `<name>text</name>`, as nearly all are, if one block holds it together with the
/// beginning of the next tag, and its text is short. Otherwise returns false and reads nothing.
inline bool XmlScanner::ReadPlainLeaf() {
    const std::string_view rest = m_input.Rest();
    const std::size_t nameSize = RunOf(rest, kName);
    const std::size_t textStart = std::min(nameSize + 1, rest.size());
    const std::size_t size = textStart + RunOf(rest.substr(textStart, kShortText), kText);
    if (size + 1 >= rest.size() || rest[nameSize] != '>' || rest[size] != '<' || rest[size + 1] != '/') return false;
    const std::size_t next = rest.find('<', size + 1);
    if (next == std::string_view::npos) return false;
    m_nameSize = nameSize;
    m_input.Gather(size);
    m_input.Pass(next - size);
    return true;
}

bool XmlScanner::ReadStartTag() {
    m_input.GatherWhile(kName);
    m_nameSize = Element().size();
    if (!m_input.AtEnd()) m_input.Gather(1);
    if (!CollectText()) return false;
    if (m_selfClosing) return true;

    m_input.SkipWhile(kBlank | kOpen);
    if (m_input.AtEnd()) return Fail(XmlError::EndInElement);
    // The end tag of an element that has only text; its name is ignored.
    if (m_input.Peek() == '/') return m_input.SkipTo('<') || Fail(XmlError::EndInElement);
    m_open.Push(Name());
    m_state |= XmlState::kHasChildren;
    m_tagTaken = true;
    return true;
}

/// Gathers the text up to the next tag. Returns false if a CDATA section isn't ended.
bool XmlScanner::CollectText() {
    bool keepBlanks = !m_input.StandsOn(kSectionStart);
    while (!m_input.AtEnd()) {
        if (m_input.Peek() != '<') {
            const std::string_view rest = m_input.Rest();
            if (!CollectRun(rest.substr(0, rest.find('<')), keepBlanks)) return true;
        } else if (m_input.StandsOn(kSectionStart)) {
            if (!CollectSection()) return false;
        } else {
            return true;
        }
    }
    return true;
}

bool XmlScanner::CollectSection() {
    m_state |= XmlState::kHasSection;
    m_input.Pass(kSectionStart.size());
    if (!m_input.GatherToText(kSectionEnd)) return Fail(XmlError::EndInElement);
    m_input.Pass(kSectionEnd.size());
    return true;
}

/// Gathers a piece of text without "<". After a ">", which usually ends the attributes, drops blanks up to the first
/// other byte. Returns false, at that ">", if it ends a self-closing element.
bool XmlScanner::CollectRun(std::string_view run, bool& keepBlanks) {
    while (!run.empty()) {
        if (!keepBlanks) {
            const std::size_t blanks = RunOf(run, kTextBlank);
            keepBlanks = blanks < run.size();
            m_input.Pass(blanks);
            run.remove_prefix(blanks);
        }
        const std::size_t size = std::min(run.size(), run.find('>'));
        m_input.Gather(size);
        run.remove_prefix(size);
        if (run.empty()) return true;

        keepBlanks = false;
        m_selfClosing = LastVisibleIsSlash();
        m_input.Gather(1);
        if (m_selfClosing) {
            m_input.StepBack();
            return false;
        }
        run.remove_prefix(1);
    }
    return true;
}

bool XmlScanner::LastVisibleIsSlash() const {
    const std::string_view element = Element();
    const auto last = std::find_if(element.rbegin(), element.rend(), [](char c) { return !Is(c, kBlank); });
    return last != element.rend() && *last == '/';
}

}  // namespace gd_xml_stream
