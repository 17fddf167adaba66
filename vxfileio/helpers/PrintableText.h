#pragma once

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

}  // namespace vxfileio::helpers
