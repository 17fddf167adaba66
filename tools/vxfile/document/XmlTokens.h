#pragma once

#include <cstddef>
#include <string_view>

namespace vxfile {

/// One piece of a document.
struct CXmlToken {
    enum class EKind {
        Start,       ///< `<tag ...>`
        SelfClosed,  ///< `<tag ... />`
        End,         ///< `</tag>`
        Text,        ///< The bytes between two tags, undecoded.
        Other,       ///< Declaration, comment, CDATA section and their like.
        Broken,      ///< A tag that the document ends in.
        Nothing,     ///< The end of the document.
    };

    EKind kind = EKind::Nothing;
    std::size_t offset = 0;
    std::string_view bytes = {};       ///< All of it.
    std::string_view tag = {};         ///< Of an element.
    std::string_view attributes = {};  ///< The bytes after the tag, including the blank.
};

/// Cuts a document into its pieces, without decoding or judging them. Every byte belongs to one piece.
class CXmlTokens {
 public:
    /// The document stays the caller's and outlives the tokens.
    explicit CXmlTokens(std::string_view document) : m_document(document) {}

    /// Returns the next piece; `Nothing` at the end, however often.
    CXmlToken Next();

 private:
    CXmlToken Take(CXmlToken::EKind kind, std::size_t size);
    CXmlToken TakeTag(std::string_view rest);

    std::string_view m_document;
    std::size_t m_offset = 0;
};

}  // namespace vxfile
