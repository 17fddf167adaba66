#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

/// @file
/// Unsigned whole numbers as bytes, least significant first, whatever the machine's own order. Any alignment will do.

namespace vxfileio {

/// Stores the bytes of `value` at `to`, which has room for them.
template <std::unsigned_integral Number>
constexpr void StoreLittleEndian(std::byte* to, Number value) {
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        to[i] = static_cast<std::byte>(static_cast<std::uint64_t>(value) >> (8 * i));
    }
}

/// Loads a number from the bytes at `from`.
template <std::unsigned_integral Number>
constexpr Number LoadLittleEndian(const std::byte* from) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        value |= std::to_integer<std::uint64_t>(from[i]) << (8 * i);
    }
    return static_cast<Number>(value);
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

}  // namespace vxfileio
