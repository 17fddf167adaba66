#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "vxfileio/base/EnumerationWords.h"

/// @file
/// What an element of a document holds, as data. The lists of fields in `XmlFields.h` yield these descriptions.

namespace vxfileio::xmlarchive {

/// The kind of an element's content. The kind of a number is also its range.
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
    Object,   ///< Children, each once and in their order.
    List,     ///< Entries; the attribute `Size` is their number.
    Entries,  ///< Entries without such an attribute.
};

/// One element: its tag and what it holds.
struct CXmlElement {
    std::string_view tag;
    EXmlKind kind = EXmlKind::Text;
    std::span<const CXmlElement> children = {};    ///< Of an object; of a list, the elements that an entry can be.
    std::span<const std::string_view> words = {};  ///< Of a word.
    std::size_t shortSize = SIZE_MAX;  ///< An object may end after this many children if the last one is an empty list.
    std::string_view onlyIf = {};      ///< The tag of the bool ahead of this element without which it has no text.
    bool mayBeEmpty = false;           ///< A word may be missing.
    bool isRead = true;                ///< False for what is written for people only.
};

template <class Value>
inline constexpr EXmlKind kKindOf = std::is_enum_v<Value> ? EXmlKind::Word : EXmlKind::Object;
template <>
inline constexpr EXmlKind kKindOf<std::string> = EXmlKind::Text;
template <>
inline constexpr EXmlKind kKindOf<char> = EXmlKind::Character;
template <>
inline constexpr EXmlKind kKindOf<bool> = EXmlKind::Bool;
template <>
inline constexpr EXmlKind kKindOf<std::int32_t> = EXmlKind::Int32;
template <>
inline constexpr EXmlKind kKindOf<std::int64_t> = EXmlKind::Int64;
template <>
inline constexpr EXmlKind kKindOf<std::uint16_t> = EXmlKind::UInt16;
template <>
inline constexpr EXmlKind kKindOf<std::uint32_t> = EXmlKind::UInt32;
template <>
inline constexpr EXmlKind kKindOf<std::uint64_t> = EXmlKind::UInt64;
template <>
inline constexpr EXmlKind kKindOf<double> = EXmlKind::Double;

/// Returns the description of an element that holds one value of this type. Fails to compile for other types.
template <class Value>
constexpr CXmlElement ElementOfValue(std::string_view tag) noexcept {
    static_assert(kKindOf<Value> != EXmlKind::Object, "values of this type have no form in a document");
    CXmlElement element{.tag = tag, .kind = kKindOf<Value>};
    if constexpr (std::is_enum_v<Value>) element.words = base::kWords<Value>.words;
    return element;
}

}  // namespace vxfileio::xmlarchive
