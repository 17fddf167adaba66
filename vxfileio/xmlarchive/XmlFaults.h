#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace gd_xml_stream {

/// A kind of fault in a document. None stops the reader.
enum class XmlFault : std::uint8_t {
    EndsInside,   ///< The document ends inside an element.
    WrongEndTag,  ///< An end tag doesn't close the innermost open element.
    TooFew,       ///< A list has fewer entries than its `Size`.
    TooMany,      ///< A list has more entries than its `Size`.
    NoNumber,     ///< A number isn't one.
    OutOfRange,   ///< The type of a number doesn't hold it.
    UnknownWord,  ///< A word isn't one of its enumeration.
    LongText,     ///< A text of one byte has more.
    NoContent,    ///< An object has no children.
    Attribute,    ///< An attribute was read in place of the text.
    NoKey,        ///< The first child of an object isn't its key.
    CutText,      ///< A comment or an element ends a value.
    BadTag,       ///< The name in a tag ends with a byte that ends no name.
    kCount
};

/// The faults of one document: the first of each kind, and how many there are. Takes the same memory for any document.
class XmlFaults {
 public:
    static constexpr std::size_t kMostShown = 64;  ///< Bytes that are kept of a value.

    /// What describes a fault.
    struct CFault {
        std::uint64_t count = 0;    ///< The number of faults of this kind. What follows belongs to the first.
        std::uint64_t offset = 0;   ///< Bytes from the start of the document.
        std::string path = {};      ///< The tags from the root on, with `/` between them, and the numbers of entries.
        std::string found = {};     ///< The beginning of a value, or a tag; at the end, one that wasn't read.
        std::string expected = {};  ///< In words; at the end, what ended the document before its file.
    };

    /// Counts a fault. Returns where to describe it if it is the first of its kind, otherwise null.
    [[nodiscard]] CFault* Add(XmlFault kind) noexcept {
        CFault& fault = m_faults[static_cast<std::size_t>(kind)];
        return fault.count++ == 0 ? &fault : nullptr;
    }

    /// Returns a sentence for each kind of fault, separated by blanks; empty without faults.
    std::string Text() const;

 private:
    std::array<CFault, static_cast<std::size_t>(XmlFault::kCount)> m_faults;
};

}  // namespace gd_xml_stream
