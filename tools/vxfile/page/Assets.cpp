#include "tools/vxfile/page/Assets.h"

#include <cstdint>

namespace vxfile::page {

namespace {

std::uint32_t DigitOf(char hex) { return static_cast<std::uint32_t>(hex <= '9' ? hex - '0' : hex - 'a' + 10); }

/// Returns bytes that are given as hexadecimal digits in Base64.
std::string Base64Of(std::string_view hex) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char digit : hex) {
        bits = bits << 4U | DigitOf(digit);
        count += 4;
        if (count < 6) continue;
        count -= 6;
        text += kAlphabet[bits >> static_cast<std::uint32_t>(count) & 63U];
    }
    if (count > 0) text += kAlphabet[bits << static_cast<std::uint32_t>(6 - count) & 63U];
    text.append((4 - text.size() % 4) % 4, '=');
    return text;
}

}  // namespace

std::string PolicyNameOf(const CAsset& script) { return "'sha256-" + Base64Of(script.sha256) + "'"; }

}  // namespace vxfile::page
