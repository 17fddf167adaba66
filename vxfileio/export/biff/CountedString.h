#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <variant>

namespace YExcel {

/// The option byte before 8-bit characters and before 16-bit characters.
inline constexpr std::uint8_t kNarrow = 0;
inline constexpr std::uint8_t kWide = 1;

/// A text in a record: its length in characters, an option byte, the characters. Stores only a pointer to the
/// characters, which must outlive this object: it is small, since a workbook may have many. A text longer than the
/// maximum of `Length` is cut.
template <class Length>
class CCountedString {
 public:
    using Characters = std::variant<std::string_view, std::u16string_view>;

    constexpr CCountedString() = default;
    constexpr explicit CCountedString(std::string_view narrow)
        : m_first{.narrow = narrow.data()}, m_count(CountOf(narrow)) {}
    constexpr explicit CCountedString(std::u16string_view wide)
        : m_first{.wide = wide.data()}, m_count(CountOf(wide)), m_option(kWide) {}

    constexpr Length Count() const { return m_count; }
    constexpr std::uint8_t Option() const { return m_option; }
    constexpr Characters Text() const {
        if (m_option == kWide) return std::u16string_view(m_first.wide, m_count);
        return std::string_view(m_first.narrow, m_count);
    }

    static constexpr void Fields(auto& self, auto& body) {
        if constexpr (requires { body.template Characters<char>(0); }) {
            self = Loaded(body);
        } else {
            body(self.m_count, self.m_option);
            std::visit([&](auto characters) { body(characters); }, self.Text());
        }
    }

 private:
    static CCountedString Loaded(auto& body) {
        Length count = 0;
        std::uint8_t option = kNarrow;
        body(count, option);
        if (option == kWide) return CCountedString(body.template Characters<char16_t>(count));
        return CCountedString(body.template Characters<char>(count));
    }

    static constexpr Length CountOf(auto characters) {
        return static_cast<Length>(std::min<std::size_t>(characters.size(), std::numeric_limits<Length>::max()));
    }

    /// The first character, narrow or wide depending on the option.
    union CFirst {
        const char* narrow;
        const char16_t* wide;
    };

    CFirst m_first{.narrow = nullptr};
    Length m_count = 0;
    std::uint8_t m_option = kNarrow;
};

/// The name of a font or sheet.
using SmallString = CCountedString<std::uint8_t>;
/// A text of the shared strings, or the name of a style. `CContinuedBody` splits it at the end of a record.
using SstString = CCountedString<std::uint16_t>;

}  // namespace YExcel
