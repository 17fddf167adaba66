#pragma once

#include <cstdint>

/// @file
/// The codes for the state of the current element and for failures. Their values are fixed.

namespace gd_xml_stream {

/// The attribute of a list that holds its number of entries.
inline constexpr const char* kListSize = "Size";

/// Bits of the state of an element.
struct XmlState {
    static constexpr std::uint32_t kOpen = 0x0001;         ///< Storing: an element is open.
    static constexpr std::uint32_t kHasText = 0x0002;      ///< Storing: it has text.
    static constexpr std::uint32_t kHasChildren = 0x0004;  ///< It has child elements.
    static constexpr std::uint32_t kTagOpen = 0x0010;      ///< Storing: the ">" of its start tag isn't written yet.
    static constexpr std::uint32_t kPassing = 0x00F0;      ///< All bits that end with the start tag.
    static constexpr std::uint32_t kEndTag = 0x0100;       ///< Loading: this event is the element's end.
    static constexpr std::uint32_t kHasSection = 0x1000;   ///< Loading: its text has a CDATA section.
};

/// Why reading the next event failed.
enum class XmlError : std::int16_t {
    None = 0,
    EndInElement = 16,  ///< The input ended inside an element or a CDATA section, or between elements of an open one.
    EndInTag = 17,      ///< The input ended where a name was expected.
    WrongEndTag = 18,   ///< An end tag doesn't match the innermost open element, or none is open.
    EndInComment = 19,  ///< The file ended after a comment or declaration, where a tag was expected.
};

}  // namespace gd_xml_stream
