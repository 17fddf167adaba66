#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "vxfileio/base/EnumerationWords.h"

/// @file
/// The content of an element, as data. The lists of fields in `XmlFields.h` yield these descriptions.

namespace vxfileio::xmlarchive {

/// The kind of an element's content. For a number, it also determines the range.
enum class EXmlKind : std::uint8_t {
    Text,
    Word,       ///< A word of an enumeration.
    Character,  ///< A text of one byte; the byte 0 is an empty text.
    Bool,
    Int32,
    Int64,
    UInt16,
    UInt32,
    UInt64,
    Double,
    Samples,  ///< Numbers with six significant digits, each followed by a semicolon.
    Object,   ///< Children, each once and in order.
    List,     ///< Entries; the attribute `Size` is their number.
    Entries,  ///< Entries without such an attribute.
};

/// An element: its tag and its content.
struct CXmlElement {
    std::string_view tag;
    EXmlKind kind = EXmlKind::Text;
    std::span<const CXmlElement> children = {};    ///< Of an object; of a list, the elements that an entry can be.
    std::span<const std::string_view> words = {};  ///< Of a word, or of a text that should be one.
    std::size_t shortSize = SIZE_MAX;  ///< An object may end after this many children if the last one is an empty list.
    std::string_view onlyIf = {};      ///< The tag of the bool before this element without which it has no text.
    bool mayBeEmpty = false;           ///< The word may be missing.
    bool isRead = true;                ///< False if it is written only for people.
    bool isVerbatim = false;           ///< References in a text with a CDATA section aren't decoded.
    bool isNew = false;                ///< Files of earlier releases lack it, so it may be missing.
};

/// Returns words as a choice: "one of the words Tecan, Norva".
inline std::string OneOf(std::span<const std::string_view> words) {
    std::string text;
    for (const auto word : words)
        text.append(text.empty() ? "one of the words " : ", ").append(word);
    return text;
}

/// @{
/// Returns the kind of a value's content.
constexpr EXmlKind KindOf(const std::string* /*type*/) noexcept { return EXmlKind::Text; }
constexpr EXmlKind KindOf(const char* /*type*/) noexcept { return EXmlKind::Character; }
constexpr EXmlKind KindOf(const bool* /*type*/) noexcept { return EXmlKind::Bool; }
constexpr EXmlKind KindOf(const std::int32_t* /*type*/) noexcept { return EXmlKind::Int32; }
constexpr EXmlKind KindOf(const std::int64_t* /*type*/) noexcept { return EXmlKind::Int64; }
constexpr EXmlKind KindOf(const std::uint16_t* /*type*/) noexcept { return EXmlKind::UInt16; }
constexpr EXmlKind KindOf(const std::uint32_t* /*type*/) noexcept { return EXmlKind::UInt32; }
constexpr EXmlKind KindOf(const std::uint64_t* /*type*/) noexcept { return EXmlKind::UInt64; }
constexpr EXmlKind KindOf(const double* /*type*/) noexcept { return EXmlKind::Double; }
template <class Word>
requires std::is_enum_v<Word>
constexpr EXmlKind KindOf(const Word* /*type*/) noexcept { return EXmlKind::Word; }
/// @}

/// Returns the description of an element that holds one value of this type. Fails to compile for other types.
template <class Value>
constexpr CXmlElement ElementOfValue(std::string_view tag) noexcept {
    CXmlElement element{.tag = tag, .kind = KindOf(static_cast<const Value*>(nullptr))};
    if constexpr (std::is_enum_v<Value>) element.words = base::kWords<Value>.words;
    return element;
}

}  // namespace vxfileio::xmlarchive
