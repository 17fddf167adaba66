#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// @file
/// Numbers as decimal text and back, independent of the locale.

namespace vxfileio::helpers {

/// The maximum length of a number in the general form.
inline constexpr std::size_t kMostGeneralSize = 16;

/// Writes a number in the general form (see `CNumberText::General`) to a buffer of at least `kMostGeneralSize`
/// characters. Returns the end of the text.
char* WriteGeneral(char* to, double value);

/// The text of a number. Allocates nothing.
class CNumberText {
 public:
    /// A whole number: digits with a leading minus sign if negative.
    template <std::integral Whole>
    explicit CNumberText(Whole value) {
        SetEnd(std::to_chars(Begin(), Begin() + m_text.size(), value).ptr);
    }

    /// A floating-point value in the general form with six significant digits, as `0.0002` or `1e-05`; `nan`, `inf`
    /// and `-inf` are texts too.
    static CNumberText General(double value);

    /// A floating-point value with the fewest digits that read back as the same: fixed notation for decimal exponents
    /// from -1 to 37, beyond them an exponent of three digits and its sign. There is always a point, and no zeros at
    /// the end: `4.`, `0.5`, `6.25e-002`. `nan`, `inf` and `-inf` are texts too.
    static CNumberText RoundTrip(double value);

    /// The text, which lives as long as this object.
    std::string_view View() const { return {m_text.data(), m_size}; }

 private:
    CNumberText() = default;

    void Add(char c) { m_text[m_size++] = c; }
    void Add(std::string_view text) { m_size += text.copy(m_text.data() + m_size, m_text.size() - m_size); }

    char* Begin() { return m_text.data(); }
    void SetEnd(const char* end) { m_size = static_cast<std::size_t>(end - m_text.data()); }

    std::array<char, 48> m_text{};  ///< Room for 38 digits, a sign and a point.
    std::size_t m_size = 0;
};

/// @name Text to number
/// Each skips leading blanks, takes a sign, stops at the first character that doesn't belong to the number, and returns
/// 0 if there is none. A number too large for the type becomes the nearest value that the type holds.
/// @{
std::int32_t ParseInt32(std::string_view text);
std::int64_t ParseInt64(std::string_view text);
std::uint32_t ParseUInt32(std::string_view text);  ///< A minus sign negates in unsigned arithmetic: "-1" is 2^32 - 1.
std::uint64_t ParseUInt64(std::string_view text);  ///< A minus sign negates in unsigned arithmetic: "-1" is 2^64 - 1.
double ParseDouble(std::string_view text);         ///< Decimal only. The largest double is followed by the infinities.
/// @}

/// What is wrong with the text of a number.
enum class ENumberFault : std::uint8_t {
    None,
    NoNumber,    ///< It has no digits, or something follows the number.
    OutOfRange,  ///< The type doesn't hold the number.
};

/// @name Text to number, with a check
/// Each stores the same as the function above, and returns whether the text is such a number and nothing else, apart
/// from blanks. -1 is out of range for unsigned numbers.
/// @{
[[nodiscard]] ENumberFault ReadNumber(std::string_view text, std::int32_t& value);
[[nodiscard]] ENumberFault ReadNumber(std::string_view text, std::int64_t& value);
[[nodiscard]] ENumberFault ReadNumber(std::string_view text, std::uint32_t& value);
[[nodiscard]] ENumberFault ReadNumber(std::string_view text, std::uint64_t& value);
[[nodiscard]] ENumberFault ReadNumber(std::string_view text, double& value);
/// @}

/// Removes a decimal from the front of `text` if it has the usual form: an optional sign, digits with at most one
/// point, an optional exponent of two digits such as `e-05`. Returns false and changes nothing if it has another form,
/// or if it is too long or too small for exact arithmetic; `ParseDouble` handles those.
bool TakeDecimal(std::string_view& text, double& value);

}  // namespace vxfileio::helpers
