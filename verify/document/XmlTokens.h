#pragma once

#include <cstddef>
#include <string_view>

namespace vxfile {

/// One token of a document.
struct CXmlToken {
    enum class EKind {
        Start,       ///< `<tag ...>`
        SelfClosed,  ///< `<tag ... />`
        End,         ///< `</tag>`
        Text,        ///< The bytes between two tags, undecoded.
        Section,     ///< A CDATA section.
        Other,       ///< Declaration, comment or the like.
        Broken,      ///< A tag that is cut by the end of the document.
        Nothing,     ///< The end of the document.
    };

    EKind kind = EKind::Nothing;
    std::size_t offset = 0;
    std::string_view bytes = {};       ///< The whole token.
    std::string_view text = {};        ///< Of a text or section, undecoded.
    std::string_view tag = {};         ///< Of an element.
    std::string_view attributes = {};  ///< The bytes after the tag, including the blank.
};

/// Splits a document into tokens, without decoding or checking them. Every byte belongs to one token.
class CXmlTokens {
 public:
    /// Keeps a view of the document, which must outlive this object and its tokens.
    explicit CXmlTokens(std::string_view document) : m_document(document) {}

    /// Returns the next token; at the end always `Nothing`.
    CXmlToken Next();

 private:
    CXmlToken Take(CXmlToken::EKind kind, std::size_t size);
    CXmlToken TakeTag(std::string_view rest);

    std::string_view m_document;
    std::size_t m_offset = 0;
};

}  // namespace vxfile
