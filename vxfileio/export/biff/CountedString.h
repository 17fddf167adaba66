#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <variant>

namespace YExcel {

/// The option byte in front of characters of one byte, and of two.
inline constexpr std::uint8_t kNarrow = 0;
inline constexpr std::uint8_t kWide = 1;

/// A text as it stands in a record: its length in characters, an option byte, the characters. The characters belong to
/// somebody else and must outlive this object. A text that is longer than `Length` can tell is cut there.
template <class Length>
class CountedString {
 public:
    using Characters = std::variant<std::string_view, std::u16string_view>;

    constexpr CountedString() = default;
    constexpr explicit CountedString(std::string_view narrow) : m_characters(narrow.substr(0, kMost)) {}
    constexpr explicit CountedString(std::u16string_view wide) : m_characters(wide.substr(0, kMost)) {}

    constexpr Length Count() const {
        return std::visit([](auto characters) { return static_cast<Length>(characters.size()); }, m_characters);
    }
    constexpr std::uint8_t Option() const {
        return std::holds_alternative<std::u16string_view>(m_characters) ? kWide : kNarrow;
    }
    constexpr const Characters& Text() const { return m_characters; }

    constexpr void Fields(auto& body) const {
        body(Count(), Option());
        std::visit([&](auto characters) { body(characters); }, m_characters);
    }

 private:
    static constexpr std::size_t kMost = std::numeric_limits<Length>::max();

    Characters m_characters;
};

/// The name of a font or a sheet.
using SmallString = CountedString<std::uint8_t>;
/// A text of the shared strings, or the name of a style. Where it goes over the end of a record is told by
/// `ContinuedBody`.
using SstString = CountedString<std::uint16_t>;

}  // namespace YExcel
