#include "vxfileio/helpers/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <system_error>
#include <type_traits>

#include "vxfileio/helpers/Digits.h"

namespace vxfileio::helpers {

namespace {

constexpr int kGeneralDigits = 6;

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> kPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                              1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Integers up to this are exact as doubles.
constexpr std::uint64_t kMostExactWhole = std::uint64_t{1} << 53;

/// Decimal exponents between which `RoundTrip` writes a number without an exponent.
constexpr std::int32_t kLeastFixedExponent = -1;
constexpr std::int32_t kMostFixedExponent = 37;

constexpr std::string_view kBlanks = " \t\n\v\f\r";

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }

inline std::string_view SkipBlanks(std::string_view text) {
    if (!text.empty() && text.front() > ' ') return text;
    const auto start = text.find_first_not_of(kBlanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// Removes the sign at the front of `text`, and returns whether it was a minus.
bool TakeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    return negative;
}

/// Every number of this many digits fits 64 bits.
constexpr std::ptrdiff_t kMostSafeDigits = 19;

/// Reads digits from `at` on into `number`, which may overflow, and returns where they end.
const char* TakeDigits(const char* at, const char* end, std::uint64_t& number) {
    if (end - at >= 8) {
        const CEightCharacters characters(at);
        const int digits = characters.Digits();
        characters.AppendTo(number, digits);
        at += digits;
        if (digits < 8) return at;
    }
    for (; at != end && IsDigit(*at); ++at)
        number = 10 * number + static_cast<std::uint64_t>(*at - '0');
    return at;
}

/// Whether nothing but blanks is left of a number's text.
inline bool IsBlank(std::string_view text) { return text.empty() || SkipBlanks(text).empty(); }

/// The digits at the front of a text, as a number.
template <std::unsigned_integral Whole>
struct CTakenDigits {
    explicit CTakenDigits(std::string_view text, Whole most) {
        const char* const begin = text.data();
        const char* const end = begin + text.size();
        std::uint64_t number = 0;
        const char* const at = TakeDigits(begin, end, number);
        value = static_cast<Whole>(number);
        fits = number <= most;
        if (at - begin > kMostSafeDigits) fits = std::from_chars(begin, end, value).ec == std::errc() && value <= most;
        isWhole = at != begin && (at == end || IsBlank({at, static_cast<std::size_t>(end - at)}));
    }

    /// Returns what is wrong with the text if `isInRange` says whether the type holds the number.
    ENumberFault Fault(bool isInRange) const {
        if (!isWhole) return ENumberFault::NoNumber;
        return isInRange ? ENumberFault::None : ENumberFault::OutOfRange;
    }

    Whole value = 0;
    bool fits = false;     ///< The number is at most `most`.
    bool isWhole = false;  ///< There are digits, and nothing but blanks follows.
};

template <std::signed_integral Whole>
ENumberFault ReadSigned(std::string_view text, Whole& value) {
    using Limits = std::numeric_limits<Whole>;
    using Magnitude = std::make_unsigned_t<Whole>;
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    const CTakenDigits<Magnitude> digits(text, Magnitude{Limits::max()} + (negative ? 1U : 0U));
    if (digits.fits) {
        value = static_cast<Whole>(negative ? Magnitude{0} - digits.value : digits.value);
    } else {
        value = negative ? Limits::min() : Limits::max();
    }
    return digits.Fault(digits.fits);
}

template <std::unsigned_integral Whole>
ENumberFault ReadUnsigned(std::string_view text, Whole& value) {
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    const CTakenDigits<Whole> digits(text, std::numeric_limits<Whole>::max());
    value = digits.fits ? digits.value : std::numeric_limits<Whole>::max();
    if (negative && digits.fits) value = static_cast<Whole>(Whole{0} - value);
    return digits.Fault(digits.fits && (!negative || value == 0));
}

/// Returns the number of a text, whether or not all of it is one.
template <class Number>
Number Parsed(std::string_view text) {
    Number number{};
    static_cast<void>(ReadNumber(text, number));
    return number;
}

/// Returns whether a number that is out of a double's range is so for being too large: its first digit other than 0
/// then precedes the point once the exponent is applied.
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

/// Returns the value times `scale`, rounded to an integer, ties to even. The product may be inexact, but the error is
/// less than half its last place, so it only matters if the product itself is a tie.
std::uint32_t RoundScaled(double value, double scale) {
    const double product = value * scale;
    const auto whole = static_cast<std::uint32_t>(product);
    const double rest = product - whole;
    if (rest != 0.5) return whole + (rest > 0.5 ? 1 : 0);
    const double lacking = std::fma(value, scale, -product);
    if (lacking != 0) return whole + (lacking > 0 ? 1 : 0);
    return whole + (whole & 1U);
}

/// Writes `digits` with a point before the last `places` of them and leading zeros if necessary. Removes trailing zeros
/// of the fraction. Returns the end of the text.
char* WriteFixed(char* to, std::uint32_t digits, int places) {
    const int width = std::max(kGeneralDigits, places + 1) + 1;  // with the point and all leading zeros
    char* last = to + width;
    for (int place = 0; place < width - 1; ++place) {
        if (place == places) *--last = '.';
        *--last = static_cast<char>('0' + digits % 10);
        digits /= 10;
    }
    char* end = to + width;
    while (end[-1] == '0')
        --end;
    return end[-1] == '.' ? end - 1 : end;
}

/// Writes values from 1e-17 to below a million in the general form; returns null for all others. They are scaled by a
/// power of ten that a double holds exactly.
char* WriteSixDigits(char* to, double value) {
    constexpr std::array<double, 24> kLimits{1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10,
                                             1e-9,  1e-8,  1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,
                                             1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6};
    constexpr int kLeastExponent = -17;
    constexpr int kLeastWithoutExponent = -4;
    constexpr std::uint32_t kSevenDigits = 1'000'000;
    const double size = std::abs(value);
    if (!(size >= kLimits.front() && size < kLimits.back())) return nullptr;
    const auto* const above = std::upper_bound(kLimits.begin(), kLimits.end(), size);
    const int exponent = kLeastExponent + static_cast<int>(above - kLimits.begin()) - 1;
    const int places = kGeneralDigits - 1 - exponent;  // after the point
    const std::uint32_t digits = RoundScaled(size, kPowersOfTen[static_cast<std::size_t>(places)]);
    if (digits >= kSevenDigits) return nullptr;  // rounded up to the next exponent

    if (value < 0) *to++ = '-';
    if (exponent >= kLeastWithoutExponent) return WriteFixed(to, digits, places);
    to = WriteFixed(to, digits, kGeneralDigits - 1);
    *to++ = 'e';
    *to++ = '-';
    *to++ = static_cast<char>('0' + -exponent / 10);
    *to++ = static_cast<char>('0' + -exponent % 10);
    return to;
}

}  // namespace

char* WriteGeneral(char* to, double value) {
    if (char* const end = WriteSixDigits(to, value)) return end;
    if (std::isnan(value)) value = std::numeric_limits<double>::quiet_NaN();  // a NaN has no sign in our files
    return std::to_chars(to, to + kMostGeneralSize, value, std::chars_format::general, kGeneralDigits).ptr;
}

CNumberText CNumberText::General(double value) {
    CNumberText text;
    text.SetEnd(WriteGeneral(text.Begin(), value));
    return text;
}

CNumberText CNumberText::RoundTrip(double value) {
    CNumberText text;
    if (!std::isfinite(value)) return General(value);
    if (std::signbit(value)) text.Add('-');

    // The digits and the exponent out of "d.ddde-XX".
    std::array<char, 32> room{};
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

ENumberFault ReadNumber(std::string_view text, std::int32_t& value) { return ReadSigned(text, value); }
ENumberFault ReadNumber(std::string_view text, std::int64_t& value) { return ReadSigned(text, value); }
ENumberFault ReadNumber(std::string_view text, std::uint32_t& value) { return ReadUnsigned(text, value); }
ENumberFault ReadNumber(std::string_view text, std::uint64_t& value) { return ReadUnsigned(text, value); }

std::int32_t ParseInt32(std::string_view text) { return Parsed<std::int32_t>(text); }
std::int64_t ParseInt64(std::string_view text) { return Parsed<std::int64_t>(text); }
std::uint32_t ParseUInt32(std::string_view text) { return Parsed<std::uint32_t>(text); }
std::uint64_t ParseUInt64(std::string_view text) { return Parsed<std::uint64_t>(text); }
double ParseDouble(std::string_view text) { return Parsed<double>(text); }

namespace {

/// Removes an exponent of the form `e-05`, and adds it to the number of decimals. Returns false for any other form.
bool TakeExponent(const char*& at, const char* end, std::ptrdiff_t& places) {
    constexpr std::ptrdiff_t kSize = 4;
    if (end - at < kSize || *at != 'e' || at[1] != '-' || !IsDigit(at[2]) || !IsDigit(at[3])) return false;
    places += 10 * (at[2] - '0') + (at[3] - '0');
    at += kSize;
    return at == end || !IsDigit(*at);
}

}  // namespace

bool TakeDecimal(std::string_view& text, double& value) {
    std::string_view rest = text;
    const bool negative = TakeSign(rest);
    const char* const begin = rest.data();
    const char* const end = begin + rest.size();
    std::uint64_t digits = 0;
    const char* at = begin;
    for (; at != end && IsDigit(*at); ++at)  // mostly one
        digits = 10 * digits + static_cast<std::uint64_t>(*at - '0');
    std::ptrdiff_t count = at - begin;
    std::ptrdiff_t places = 0;
    if (at != end && *at == '.') {
        const char* const fraction = at + 1;
        at = TakeDigits(fraction, end, digits);
        places = at - fraction;
        count += places;
    }
    if (count == 0 || count > kMostSafeDigits || digits > kMostExactWhole) return false;
    if (at != end && (*at == 'e' || *at == 'E') && !TakeExponent(at, end, places)) return false;
    const auto power = static_cast<std::size_t>(places);
    if (power >= kPowersOfTen.size()) return false;
    // Both are exact, so that their quotient is the nearest value.
    const double size = static_cast<double>(digits) / kPowersOfTen[power];
    value = negative ? -size : size;
    text.remove_prefix(static_cast<std::size_t>(at - text.data()));
    return true;
}

ENumberFault ReadNumber(std::string_view text, double& value) {
    text = SkipBlanks(text);
    value = 0.0;
    if (TakeDecimal(text, value)) return IsBlank(text) ? ENumberFault::None : ENumberFault::NoNumber;
    const bool negative = TakeSign(text);
    if (!text.empty() && text.front() == '-') return ENumberFault::NoNumber;  // a second sign belongs to no number
    const char* const end = text.data() + text.size();
    const auto [after, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc::invalid_argument) return ENumberFault::NoNumber;  // nor does a sign alone make one
    const bool fits = error == std::errc();
    if (!fits) value = IsTooLarge(text) ? std::numeric_limits<double>::infinity() : 0.0;
    if (negative) value = -value;
    if (!IsBlank({after, static_cast<std::size_t>(end - after)})) return ENumberFault::NoNumber;
    return fits ? ENumberFault::None : ENumberFault::OutOfRange;
}

}  // namespace vxfileio::helpers
