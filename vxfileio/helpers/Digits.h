#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vxfileio/helpers/LittleEndian.h"

/// @file
/// Parses digits eight at a time. It is in a header since readers parse numbers for every system call.

namespace vxfileio::helpers {

/// Eight characters, the first one in the lowest byte: their differences from `0`, and which of them aren't digits.
class CEightCharacters {
 public:
    explicit CEightCharacters(const char* at)
        : m_values(LoadLE64(reinterpret_cast<const std::byte*>(at)) ^ 0x3030303030303030) {}

    /// Returns the number of leading digits. The sum sets the top bit of a byte above 9; a carry from such a byte only
    /// affects later ones.
    int Digits() const {
        const std::uint64_t others = ((m_values + 0x7676767676767676) | m_values) & 0x8080808080808080;
        return std::countr_zero(others) / 8;
    }

    /// Returns the number of the first `digits` characters, from 1 to 8: pairs of digits, pairs of pairs, both halves.
    std::uint64_t Number(int digits) const {
        std::uint64_t number = m_values << (64 - 8 * digits);  // leading zeros
        number = (number * 10 + (number >> 8)) & 0x00FF00FF00FF00FF;
        number = (number * 100 + (number >> 16)) & 0x0000FFFF0000FFFF;
        return (number * 10000 + (number >> 32)) & 0x00000000FFFFFFFF;
    }

    /// Appends the first `digits` characters, from 0 to 8, to the digits of `number`.
    void AppendTo(std::uint64_t& number, int digits) const {
        static constexpr std::array<std::uint64_t, 9> kPowers{1,       10,        100,        1'000,      10'000,
                                                              100'000, 1'000'000, 10'000'000, 100'000'000};
        if (digits > 0) number = number * kPowers[static_cast<std::size_t>(digits)] + Number(digits);
    }

 private:
    std::uint64_t m_values;
};

/// Reads a whole number that begins with the text and has at most 15 digits, in a text of at least 17 characters, as
/// nearly all in fixed cells are. Nothing for any other: it has to be read the general way.
inline std::optional<std::int64_t> ParseShortWhole(std::string_view text) {
    constexpr int kEight = 8;
    constexpr std::size_t kLeastText = 2 * kEight + 1;
    if (text.size() < kLeastText) return std::nullopt;
    const bool negative = text.front() == '-';
    const char* const at = text.data() + (negative ? 1 : 0);
    const CEightCharacters first(at);
    const int digits = first.Digits();
    if (digits == 0) return std::nullopt;
    std::uint64_t number = first.Number(digits);
    if (digits == kEight) {
        const CEightCharacters second(at + kEight);
        const int more = second.Digits();
        if (more == kEight) return std::nullopt;
        second.AppendTo(number, more);
    }
    const auto value = static_cast<std::int64_t>(number);
    return negative ? -value : value;
}

}  // namespace vxfileio::helpers
