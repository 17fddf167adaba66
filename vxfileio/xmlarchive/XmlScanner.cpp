#include "vxfileio/xmlarchive/XmlScanner.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace gd_xml_stream {

namespace {

constexpr std::string_view kSectionStart = "<![CDATA[";
constexpr std::string_view kSectionEnd = "]]>";
constexpr std::string_view kCommentEnd = "-->";
constexpr std::string_view kInstructionEnd = "?>";

/// The maximum length of a name in a message.
constexpr std::size_t kMostNameShown = 64;

/// Texts up to this length are processed byte by byte.
constexpr std::size_t kShortText = 64;

/// Returns whether the same `size` bytes are at both places. Names are short, and a call of `memcmp` would take longer.
inline bool IsSame(const char* left, const char* right, std::size_t size) {
    const auto same = [&]<class Word>(std::size_t at, Word /*type*/) {
        Word words[2];
        std::memcpy(&words[0], left + at, sizeof(Word));
        std::memcpy(&words[1], right + at, sizeof(Word));
        return words[0] == words[1];
    };
    constexpr std::uint64_t kEight = 0;
    constexpr std::uint32_t kFour = 0;
    if (size > 2 * sizeof kEight) return std::memcmp(left, right, size) == 0;
    if (size >= sizeof kEight) return same(0, kEight) && same(size - sizeof kEight, kEight);
    if (size >= sizeof kFour) return same(0, kFour) && same(size - sizeof kFour, kFour);
    return std::equal(left, left + size, right);
}

}  // namespace

bool XmlScanner::SkipProlog() {
    constexpr std::size_t kBeginning = 15;  // more than any mark, and no allocation
    m_beginning = m_input.Rest().substr(0, kBeginning);
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

bool XmlScanner::SkipEpilog() {
    ForgetElement();
    if (m_input.StandsOn(">")) m_input.Pass(1);
    while (true) {
        m_input.SkipWhile(kTextBlank);
        if (m_input.AtEnd()) return !m_input.EndsInNul();
        const bool isComment = m_input.StandsOn("<!--");
        if (!isComment && !m_input.StandsOn("<?")) return false;
        m_input.SkipToText(isComment ? kCommentEnd : kInstructionEnd);
        m_input.SkipTo('>');
        m_input.Pass(m_input.AtEnd() ? 0 : 1);
    }
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
    m_elementAt = kInMemory;
    m_nameSize = 0;
    m_state = 0;
}

bool XmlScanner::Fail(XmlError error) {
    m_lastError = error;
    if (m_input.AtEnd()) {
        NoteEndInside();
    } else if (error == XmlError::WrongEndTag) {
        NoteWrongEnd(Element(), m_open.IsEmpty() ? std::string_view() : m_open.Top(), m_elementAt - 1, {});
    }
    return false;
}

inline bool XmlScanner::ReadEvent() {
    if (!FindTag()) return false;
    m_input.SkipWhile(kBlank);
    if (m_input.AtEnd()) return Fail(m_open.IsEmpty() ? XmlError::EndInElement : XmlError::EndInTag);
    if (m_input.Peek() != '/') {
        ++Level().children;
        return ReadPlainLeaf() || ReadStartTag();
    }
    m_elementAt = m_input.Offset();
    m_input.Pass(1);
    return ReadEndTag();
}

/// Moves past the "<" of the next tag. Skips comments and text that belongs to no element.
inline bool XmlScanner::FindTag() {
    if (!m_tagTaken && m_input.AtEnd()) {
        NoteEndInside();
        return false;
    }
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
    m_nameSize = Element().size();
    if (!m_input.SkipTo('>')) return Fail(XmlError::EndInElement);
    m_state = XmlState::kEndTag;
    CheckCount(Level(), Level().children, {});
    if (Level().neededAt != 0 && Level().children == 0) NoteNoContent(Level().neededAt, {});
    m_open.Pop();
    FindLevel();
    return true;
}

/// Reads an element of the form `<name>text</name>`, as nearly all are, if one block holds it together with the
/// beginning of the next tag, and its text is short. Otherwise returns false and reads nothing.
inline bool XmlScanner::ReadPlainLeaf() {
    const std::string_view rest = m_input.Rest();
    const std::size_t nameSize = RunOf(rest, kPlainName);
    const std::size_t textStart = std::min(nameSize + 1, rest.size());
    const std::size_t size = textStart + RunOf(rest.substr(textStart, kShortText), kText);
    if (size + 1 >= rest.size() || rest[nameSize] != '>' || rest[size] != '<' || rest[size + 1] != '/') return false;
    // Mostly the next tag follows at once, after the name and its ">".
    const std::size_t endName = size + 2;
    std::size_t next = endName + textStart;
    if (next >= rest.size() || rest[next] != '<' || !IsSame(rest.data(), rest.data() + endName, textStart)) {
        next = rest.find('<', size + 1);
        if (next == std::string_view::npos) return false;
        CheckPlainEnd(rest.substr(0, nameSize), rest.substr(endName, next - endName), size);
    }
    m_nameSize = nameSize;
    m_input.Gather(size);
    m_input.Pass(next - size);
    return true;
}

bool XmlScanner::ReadStartTag() {
    m_elementAt = m_input.Offset();
    m_input.GatherWhile(kName);
    m_nameSize = Element().size();
    if (!m_input.AtEnd()) m_input.Gather(1);
    if (!CollectText()) return false;
    if (m_selfClosing) {
        CheckNameEnd();
        return true;
    }

    m_input.SkipWhile(kBlank | kOpen);
    if (m_input.AtEnd()) return Fail(XmlError::EndInElement);
    if (m_input.Peek() == '/') return PassLeafEnd();
    OpenElement();
    m_state |= XmlState::kHasChildren;
    m_tagTaken = true;
    return true;
}

/// Moves past the end tag of an element that has only text, to the next tag. Another name is reported, and otherwise
/// ignored. Returns false if no tag follows: the element then isn't delivered.
bool XmlScanner::PassLeafEnd() {
    CheckLeafEnd();
    m_input.SkipWhile(kText);
    const bool isWhole = m_input.Peek() == '>';
    if (m_input.SkipTo('<')) return true;
    m_lastError = XmlError::EndInElement;
    NoteEndInside(isWhole ? Name() : std::string_view());
    return false;
}

/// Notes if an end tag, here its part after the "</", isn't that of a leaf with this name. It is `at` bytes after the
/// cursor.
void XmlScanner::CheckPlainEnd(std::string_view name, std::string_view end, std::size_t at) {
    const bool isSame = end.size() > name.size() && IsSame(end.data(), name.data(), name.size());
    if (!isSame || Is(end[name.size()], kEndName))
        NoteWrongEnd(end.substr(0, RunOf(end, kEndName)), name, m_input.Offset() + at, name);
}

/// Makes the current element the innermost open one.
inline void XmlScanner::OpenElement() {
    const std::size_t depth = m_open.Size();
    m_open.Push(Name());
    FindLevel();
    Level() = {.offset = m_elementAt - 1};
    if (depth > 1 || (depth == 1 && m_levels[1].children >= m_outline.size())) return;
    m_outline[depth == 0 ? 0 : m_levels[1].children] = Name().substr(0, kMostNameShown);
}

/// Notes if the name of a self-closing element, which no end tag repeats, is followed by a byte that ends no name.
void XmlScanner::CheckNameEnd() {
    const char end = Element()[m_nameSize];
    if (end == '/' || end == '>' || Is(end, kTextBlank)) return;
    if (auto* const fault = m_faults.Add(XmlFault::BadTag)) {
        const std::string_view shown = Element().substr(0, XmlFaults::kMostShown);
        *fault = {1, m_elementAt - 1, PathTo({}), '<' + std::string(shown), std::string(Name())};
    }
}

/// Compares the end tag of an element without children, whose "/" is at the cursor, with its start tag. Both names are
/// compared with the bytes that no name has, as a damaged one has them.
void XmlScanner::CheckLeafEnd() {
    const auto nameIn = [](std::string_view tag) {
        const auto* const end =
            std::find_if(tag.begin(), tag.end(), [](char c) { return c == '>' || Is(c, kTextBlank); });
        return tag.substr(0, static_cast<std::size_t>(end - tag.begin()));
    };
    if (!m_input.Has(nameIn(Element()).size() + 2)) return;  // the document ends in the tag
    m_input.Has(nameIn(Element()).size() + 2 + kMostNameShown);
    const std::string_view name = nameIn(Element());
    const std::string_view found = nameIn(m_input.Rest().substr(1, name.size() + 1 + kMostNameShown));
    if (found != name) NoteWrongEnd(found, name, m_input.Offset(), Name());
}

void XmlScanner::MakeList(std::int64_t claimed) {
    if ((m_state & XmlState::kEndTag) != 0) return;
    if ((m_state & XmlState::kHasChildren) != 0) {
        Level().claimed = claimed;
        Level().isList = true;
    } else {
        CheckCount({.offset = m_elementAt - 1, .claimed = claimed}, 0, Name());
    }
}

void XmlScanner::NeedChildren() {
    if ((m_state & XmlState::kHasChildren) == 0) {
        NoteNoContent(TextOffset(), Name());
    } else if (&Level() != &m_levels.back()) {
        Level().neededAt = TextOffset();
    }
}

void XmlScanner::NoteNoContent(std::uint64_t offset, std::string_view leaf) {
    if (auto* const fault = m_faults.Add(XmlFault::NoContent)) {
        fault->offset = offset;
        fault->path = PathTo(leaf);
    }
}

void XmlScanner::CheckCount(const CLevel& list, std::uint64_t entries, std::string_view leaf) {
    if (list.claimed == kAnyNumber || list.claimed == static_cast<std::int64_t>(entries)) return;
    if (&list == &m_levels.back()) return;
    const bool tooFew = static_cast<std::int64_t>(entries) < list.claimed;
    if (auto* const fault = m_faults.Add(tooFew ? XmlFault::TooFew : XmlFault::TooMany)) {
        fault->offset = list.offset;
        fault->path = PathTo(leaf);
        fault->found = std::to_string(entries) + (entries == 1 ? " entry" : " entries");
        fault->expected = std::to_string(list.claimed);
    }
}

/// Notes that the document ends where something is open. `undelivered` is empty, or the name of the current element if
/// that is whole.
void XmlScanner::NoteEndInside(std::string_view undelivered) {
    if (m_open.IsEmpty() && (Element().empty() || !undelivered.empty())) return;
    m_endsInside = true;
    if (auto* const fault = m_faults.Add(XmlFault::EndsInside)) {
        const bool inText = undelivered.empty() && Element().find('>') != std::string_view::npos;
        fault->offset = m_input.Offset();
        fault->path = PathTo(inText ? Name() : std::string_view());  // end tags are without a ">"
        fault->found = undelivered.substr(0, kMostNameShown);
        fault->expected = m_input.EndsInNul() ? "a NUL" : "";
    }
}

/// Notes an end tag that was found where another was expected, or none if nothing is `open`. `leaf` is empty, or the
/// name of the child of the innermost open element that ends here.
void XmlScanner::NoteWrongEnd(std::string_view found, std::string_view open, std::uint64_t offset,
                              std::string_view leaf) {
    if (auto* const fault = m_faults.Add(XmlFault::WrongEndTag)) {
        fault->offset = offset;
        fault->path = PathTo(leaf);
        fault->found = found.substr(0, XmlFaults::kMostShown);
        fault->expected =
            open.empty() ? "the end of the document" : "</" + std::string(open.substr(0, kMostNameShown)) + '>';
    }
}

std::string XmlScanner::Path() const {
    return PathTo((m_state & (XmlState::kHasChildren | XmlState::kEndTag)) != 0 ? std::string_view() : Name());
}

/// Returns the path of a child of the innermost open element, or that of this element itself.
std::string XmlScanner::PathTo(std::string_view leaf) const {
    std::string path;
    for (std::size_t depth = 0; depth < std::min(m_open.Size(), kMostLevels - 1); ++depth) {
        path.append(path.empty() ? "" : "/").append(m_open.At(depth).substr(0, kMostNameShown));
        const CLevel& level = m_levels[depth + 1];
        const bool isLast = depth + 1 == m_open.Size() && leaf.empty();
        if (level.isList && !isLast && level.children > 0) path += '[' + std::to_string(level.children - 1) + ']';
    }
    if (m_open.Size() >= kMostLevels) path += "/...";
    if (!leaf.empty()) path.append(path.empty() ? "" : "/").append(leaf.substr(0, kMostNameShown));
    return path;
}

std::uint64_t XmlScanner::TextOffset() const {
    const std::size_t tagEnd = Element().find('>');
    const std::uint64_t start = m_elementAt == kInMemory ? m_input.GatheredOffset() : m_elementAt;
    return start + (tagEnd == std::string_view::npos ? Element().size() : tagEnd + 1);
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
