#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// @file
/// Any bytes, and numbers of things, in sentences for people.

namespace vxfileio::helpers {

/// Returns a character of ASCII as it is if it can be printed, else as `\n`, `\"` or `\x00`.
std::string Printable(char c);

/// Returns bytes in quotation marks, each printable, long ones cut by `...`.
std::string Quoted(std::string_view bytes);

/// Returns a count and its noun, such as "1 byte" or "2 bytes".
std::string Counted(std::uint64_t count, std::string_view noun);

/// Returns whether all bytes are UTF-8, without the control characters that Latin-1 has at 0x80 to 0x9F.
bool IsUtf8(std::string_view bytes);

/// Returns bytes that are UTF-8 as they are, and each other one as `\xe4`.
std::string Escaped(std::string_view bytes);

/// Returns bytes that are UTF-8 as they are, and others with each byte as a character of Latin-1.
std::string Utf8(std::string_view bytes);

/// The units of doses in UTF-8, each a thousand times the one before. The first is that of files.
inline constexpr std::array<std::string_view, 5> kDoseUnits = {"pM", "nM", "\xC2\xB5M", "mM", "M"};

/// Returns a dose of picomolar in the largest unit that needs no fraction, such as "10 nM".
std::string DoseWithUnit(std::uint64_t dose);

}  // namespace vxfileio::helpers
