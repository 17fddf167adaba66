#include "verify/document/XmlTokens.h"

#include <algorithm>
#include <array>

namespace vxfile {

namespace {

/// How markup other than an element begins and ends.
struct COtherForm {
    std::string_view begin;
    std::string_view end;
    CXmlToken::EKind kind = CXmlToken::EKind::Other;
};

constexpr std::array kOtherForms = {
    COtherForm{"<?", "?>"},
    COtherForm{"<!--", "-->"},
    COtherForm{"<![CDATA[", "]]>", CXmlToken::EKind::Section},
    COtherForm{"<!", ">"},
};

constexpr std::string_view kTagEnds = " \t\r\n/>";

/// Returns the offset after the `>` of a tag; npos if it is missing. A quoted value may contain a `>`.
std::size_t EndOfTag(std::string_view text) {
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote == 0 && c == '>') return i + 1;
        if (c == quote) {
            quote = 0;
        } else if (quote == 0 && (c == '"' || c == '\'')) {
            quote = c;
        }
    }
    return std::string_view::npos;
}

}  // namespace

CXmlToken CXmlTokens::Next() {
    const std::string_view rest = m_document.substr(m_offset);
    if (rest.empty()) return Take(CXmlToken::EKind::Nothing, 0);
    if (rest.front() != '<') {
        CXmlToken token = Take(CXmlToken::EKind::Text, std::min(rest.find('<'), rest.size()));
        token.text = token.bytes;
        return token;
    }
    for (const auto& form : kOtherForms) {
        if (!rest.starts_with(form.begin)) continue;
        const auto end = rest.find(form.end, form.begin.size());
        if (end == std::string_view::npos) return Take(CXmlToken::EKind::Broken, rest.size());
        CXmlToken token = Take(form.kind, end + form.end.size());
        if (form.kind == CXmlToken::EKind::Section)
            token.text = rest.substr(form.begin.size(), end - form.begin.size());
        return token;
    }
    return TakeTag(rest);
}

CXmlToken CXmlTokens::Take(CXmlToken::EKind kind, std::size_t size) {
    const CXmlToken token{kind, m_offset, m_document.substr(m_offset, size)};
    m_offset += size;
    return token;
}

CXmlToken CXmlTokens::TakeTag(std::string_view rest) {
    const std::size_t size = EndOfTag(rest);
    if (size == std::string_view::npos) return Take(CXmlToken::EKind::Broken, rest.size());
    const bool isEnd = rest[1] == '/';
    const bool isSelfClosed = !isEnd && rest[size - 2] == '/';
    const auto kind = isEnd          ? CXmlToken::EKind::End
                      : isSelfClosed ? CXmlToken::EKind::SelfClosed
                                     : CXmlToken::EKind::Start;
    CXmlToken token = Take(kind, size);
    const std::size_t begin = isEnd ? 2 : 1;
    const std::size_t end = size - (isSelfClosed ? 2 : 1);
    const std::string_view inner = token.bytes.substr(begin, end - begin);
    token.tag = inner.substr(0, inner.find_first_of(kTagEnds));
    token.attributes = inner.substr(token.tag.size());
    return token;
}

}  // namespace vxfile
