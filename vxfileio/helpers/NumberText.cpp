#include "vxfileio/helpers/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <system_error>
#include <type_traits>

namespace vxfileio {

namespace {

constexpr int kGeneralDigits = 6;

/// Decimal exponents between which `RoundTrip` writes a number without an exponent.
constexpr std::int32_t kLeastFixedExponent = -1;
constexpr std::int32_t kMostFixedExponent = 37;

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

CNumberText CNumberText::RoundTrip(double value) {
    CNumberText text;
    if (!std::isfinite(value)) return General(value);
    if (std::signbit(value)) text.Add('-');

    // The digits and the exponent out of "d.ddde-XX".
    std::array<char, 32> room;
    const auto* const end =
        std::to_chars(room.data(), room.data() + room.size(), std::abs(value), std::chars_format::scientific).ptr;
    const std::string_view shortest(room.data(), static_cast<std::size_t>(end - room.data()));
    const auto e = shortest.find('e');
    const std::string_view first = shortest.substr(0, 1);
    const std::string_view fraction = e > 1 ? shortest.substr(2, e - 2) : std::string_view();
    const std::int32_t exponent = ParseInt32(shortest.substr(e + 1));

    if (exponent < kLeastFixedExponent || exponent > kMostFixedExponent) {
        text.Add(first);
        text.Add('.');
        text.Add(fraction);
        text.Add(exponent < 0 ? "e-" : "e+");
        const std::int32_t size = std::abs(exponent);
        for (const std::int32_t unit : {100, 10, 1})
            text.Add(static_cast<char>('0' + size / unit % 10));
    } else if (exponent < 0) {
        text.Add("0.");
        text.Add(first);
        text.Add(fraction);
    } else {
        const auto whole = static_cast<std::size_t>(exponent);
        text.Add(first);
        text.Add(fraction.substr(0, whole));
        for (std::size_t i = fraction.size(); i < whole; ++i)
            text.Add('0');
        text.Add('.');
        text.Add(fraction.substr(std::min(whole, fraction.size())));
    }
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
