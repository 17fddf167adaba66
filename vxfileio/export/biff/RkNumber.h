#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

/// @file
/// The short form of a number: the upper 30 bits of a double, or a 30-bit integer. Bit 0 of the word means that the
/// number is to be divided by 100, bit 1 that it is an integer.
///
/// A double has the short form if its third and fourth decimals appear to be 0. The value isn't always exact: 12.34005
/// reads back as 12.3400390625, and 5242.89 as 5242.88.

namespace YExcel {

namespace rk {

inline constexpr std::uint32_t kHundredths = 1;
inline constexpr std::uint32_t kWhole = 2;
inline constexpr std::uint32_t kFlags = kHundredths | kWhole;

constexpr std::uint32_t Bits(std::int32_t value) { return static_cast<std::uint32_t>(value); }

/// Returns the number times 100, modulo 2^32.
constexpr std::uint32_t TimesHundred(std::int32_t value) { return Bits(value) * 100U; }

}  // namespace rk

/// Removes the decimals. Returns the minimum if the value doesn't fit into 32 bits or isn't a number.
constexpr std::int32_t Truncate(double value) {
    constexpr double kEnd = 2147483648.0;
    return value > -kEnd && value < kEnd ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

/// Returns whether a double is stored in the short form.
constexpr bool TwoDecimalTest(double value) {
    return rk::TimesHundred(Truncate(value * 100.0)) == rk::Bits(Truncate(value * 10000.0));
}

/// Returns the word for a double.
constexpr std::uint32_t EncodeRK(double value) {
    const bool hasDecimals = rk::TimesHundred(Truncate(value)) != rk::Bits(Truncate(value * 100.0));
    const auto bits = std::bit_cast<std::uint64_t>(hasDecimals ? value * 100.0 : value);
    return (static_cast<std::uint32_t>(bits >> 32U) & ~rk::kFlags) | (hasDecimals ? rk::kHundredths : 0U);
}

/// Returns the word for an integer. If it doesn't fit, the upper 2 bits are lost.
constexpr std::uint32_t EncodeIntegerRK(std::int32_t value) { return rk::Bits(value) * 4U + rk::kWhole; }

/// Returns the number of a word. An integer divided by 100 loses its decimals.
inline double DecodeRK(std::uint32_t word) {
    const bool hundredths = (word & rk::kHundredths) != 0;
    if ((word & rk::kWhole) != 0) {
        const std::int32_t whole = static_cast<std::int32_t>(word) >> 2;
        return hundredths ? std::trunc(whole * 0.01) : whole;
    }
    const auto value = std::bit_cast<double>(std::uint64_t{word & ~rk::kFlags} << 32U);
    return hundredths ? value * 0.01 : value;
}

}  // namespace YExcel
