#include "vxfileio/helpers/NumberText.h"

#include <cmath>
#include <limits>
#include <optional>
#include <system_error>
#include <type_traits>

namespace vxfileio {

namespace {

constexpr int kGeneralDigits = 6;

constexpr std::string_view kBlanks = " \t\n\v\f\r";

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view SkipBlanks(std::string_view text) {
    const auto start = text.find_first_not_of(kBlanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// Takes the sign at the front of `text` off, and tells whether it was a minus.
bool TakeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    return negative;
}

/// Reads digits only; nothing if the type is too small for them, 0 if there are none.
template <std::unsigned_integral Whole>
std::optional<Whole> ParseDigits(std::string_view text) {
    Whole value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) return std::nullopt;
    return value;
}

template <std::signed_integral Whole>
Whole ParseSigned(std::string_view text) {
    using Limits = std::numeric_limits<Whole>;
    using Magnitude = std::make_unsigned_t<Whole>;
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    const auto magnitude = ParseDigits<Magnitude>(text);
    if (!magnitude || *magnitude > Magnitude{Limits::max()}) return negative ? Limits::min() : Limits::max();
    const auto value = static_cast<Whole>(*magnitude);
    return negative ? static_cast<Whole>(-value) : value;
}

template <std::unsigned_integral Whole>
Whole ParseUnsigned(std::string_view text) {
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    const auto magnitude = ParseDigits<Whole>(text);
    if (!magnitude) return std::numeric_limits<Whole>::max();
    return negative ? static_cast<Whole>(Whole{0} - *magnitude) : *magnitude;
}

/// Tells whether a number that is out of a double's range is so for being too large: its first digit other than 0
/// then stands ahead of the point once the exponent is applied.
bool IsTooLarge(std::string_view digits) {
    std::int64_t scale = 0;  // decimal places from the first significant digit to the point
    bool significant = false;
    bool fraction = false;
    std::size_t at = 0;
    for (; at < digits.size() && (IsDigit(digits[at]) || (digits[at] == '.' && !fraction)); ++at) {
        if (digits[at] == '.') {
            fraction = true;
            continue;
        }
        significant = significant || digits[at] != '0';
        if (significant && !fraction) ++scale;
        if (!significant && fraction) --scale;
    }
    if (at == digits.size() || (digits[at] != 'e' && digits[at] != 'E')) return scale > 0;
    const std::int64_t exponent = ParseInt32(digits.substr(at + 1));
    return scale + exponent > 0;
}

}  // namespace

CNumberText CNumberText::General(double value) {
    CNumberText text;
    if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();  // a NaN has no sign in our files
    text.SetEnd(std::to_chars(text.Begin(), text.Begin() + text.m_text.size(), value, std::chars_format::general,
                              kGeneralDigits)
                    .ptr);
    return text;
}

std::int32_t ParseInt32(std::string_view text) { return ParseSigned<std::int32_t>(text); }
std::int64_t ParseInt64(std::string_view text) { return ParseSigned<std::int64_t>(text); }
std::uint32_t ParseUInt32(std::string_view text) { return ParseUnsigned<std::uint32_t>(text); }
std::uint64_t ParseUInt64(std::string_view text) { return ParseUnsigned<std::uint64_t>(text); }

double ParseDouble(std::string_view text) {
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    if (!text.empty() && text.front() == '-') return 0.0;  // a second sign belongs to no number
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::invalid_argument) return 0.0;  // nor does a sign alone make one, not even -0
    if (result.ec == std::errc::result_out_of_range) {
        value = IsTooLarge(text) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -value : value;
}

}  // namespace vxfileio
