#pragma once

#include <span>
#include <string>

namespace vxfile {

/// Returns bytes as hexadecimal digits in lower case, two for each byte.
inline std::string HexOf(std::span<const unsigned char> bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

}  // namespace vxfile
