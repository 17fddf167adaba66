#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>

/// @file
/// Unsigned integers as bytes, least significant byte first, regardless of the machine's byte order and of alignment.

namespace vxfileio::helpers {

/// Converts a number between the machine's byte order and that of files.
template <std::unsigned_integral Number>
constexpr std::array<std::byte, sizeof(Number)> InFileOrder(std::array<std::byte, sizeof(Number)> bytes) {
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

/// Stores the bytes of `value` at `to`, which must have room for them.
template <std::unsigned_integral Number>
constexpr void StoreLittleEndian(std::byte* to, Number value) {
    const auto bytes = InFileOrder<Number>(std::bit_cast<std::array<std::byte, sizeof(Number)>>(value));
    std::copy_n(bytes.data(), bytes.size(), to);
}

/// Loads a number from the bytes at `from`.
template <std::unsigned_integral Number>
constexpr Number LoadLittleEndian(const std::byte* from) {
    std::array<std::byte, sizeof(Number)> bytes{};
    std::copy_n(from, bytes.size(), bytes.data());
    return std::bit_cast<Number>(InFileOrder<Number>(bytes));
}

/// Stores 2 bytes.
constexpr void StoreLE16(std::byte* to, std::uint16_t value) { StoreLittleEndian(to, value); }
/// Stores 4 bytes.
constexpr void StoreLE32(std::byte* to, std::uint32_t value) { StoreLittleEndian(to, value); }
/// Stores 8 bytes.
constexpr void StoreLE64(std::byte* to, std::uint64_t value) { StoreLittleEndian(to, value); }
/// Loads 2 bytes.
constexpr std::uint16_t LoadLE16(const std::byte* from) { return LoadLittleEndian<std::uint16_t>(from); }
/// Loads 4 bytes.
constexpr std::uint32_t LoadLE32(const std::byte* from) { return LoadLittleEndian<std::uint32_t>(from); }
/// Loads 8 bytes.
constexpr std::uint64_t LoadLE64(const std::byte* from) { return LoadLittleEndian<std::uint64_t>(from); }

}  // namespace vxfileio::helpers
