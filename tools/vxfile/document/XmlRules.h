#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// @file
/// Which elements settings and results files consist of, said once: their tags, their order, and what they hold.

namespace vxfile {

/// What an element holds.
enum class EXmlKind : std::uint8_t {
    Text,
    Word,       ///< A word of an enumeration.
    NoWord,     ///< The same, or nothing.
    Character,  ///< A text of one byte, or none for the byte 0.
    Bool,
    Int32,
    Int64,
    UInt16,
    UInt32,
    UInt64,
    Double,
    FoundInt64,   ///< A number if the `FPfastDetected` ahead of it is 1, nothing otherwise.
    FoundDouble,  ///< The same.
    Samples,      ///< Numbers of six digits, each with a semicolon behind it.
    Object,       ///< Children, each once and in their order.
    List,         ///< Entries, as many as the attribute `Size` says.
    Entries,      ///< Entries without such an attribute.
};

struct CXmlRule {
    std::string_view tag;
    EXmlKind kind = EXmlKind::Text;
    std::span<const CXmlRule> children = {};       ///< Of an object; of a list the forms that an entry can have.
    std::span<const std::string_view> words = {};  ///< Of an enumeration.
    std::size_t enough = SIZE_MAX;  ///< So many children of an object do if the list that is last of them is empty.
};

/// The children of the root, of settings files and of results files.
extern const std::span<const CXmlRule> kSettingsRules;
extern const std::span<const CXmlRule> kResultsRules;

}  // namespace vxfile
