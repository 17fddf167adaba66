#include "vxfileio/helpers/PrintableText.h"

#include <cstddef>

namespace vxfileio::helpers {

namespace {

constexpr std::size_t kMostQuoted = 60;

std::string Hex(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 15U]};
}

unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

/// Returns the number of bytes of the UTF-8 character at the front; 0 if there is none.
std::size_t SizeOfFirst(std::string_view text) {
    if (Byte(text.front()) < 0x80) return 1;
    const unsigned char lead = Byte(text.front());
    const std::size_t size = lead >= 0xF5 ? 0 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (size == 0 || text.size() < size) return 0;
    for (const char c : text.substr(1, size - 1)) {
        if ((Byte(c) & 0xC0U) != 0x80) return 0;
    }
    const unsigned char second = Byte(text[1]);
    const bool isOutside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                           (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F) ||
                           (lead == 0xC2 && second < 0xA0);  // control characters
    return isOutside ? 0 : size;
}

/// Returns a character of Latin-1 that isn't ASCII as UTF-8.
std::string Wide(char c) {
    const unsigned char byte = Byte(c);
    return {static_cast<char>(0xC0U | (byte >> 6U)), static_cast<char>(0x80U | (byte & 0x3FU))};
}

}  // namespace

std::string Printable(char c) {
    if (c == '\r') return "\\r";
    if (c == '\n') return "\\n";
    if (c == '"' || c == '\\') return {'\\', c};
    return c >= ' ' && c <= '~' ? std::string(1, c) : Hex(c);
}

std::string Quoted(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes.substr(0, kMostQuoted))
        text += Printable(c);
    return text + (bytes.size() > kMostQuoted ? "\"..." : "\"");
}

std::string Counted(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t size = SizeOfFirst(bytes);
        if (size == 0) return false;
        bytes.remove_prefix(size);
    }
    return true;
}

std::string Escaped(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t size = SizeOfFirst(bytes);
        text += size == 0 ? Hex(bytes.front()) : std::string(bytes.substr(0, size));
        bytes.remove_prefix(size == 0 ? 1 : size);
    }
    return text;
}

std::string Utf8(std::string_view bytes) {
    if (IsUtf8(bytes)) return std::string(bytes);
    std::string text;
    for (const char c : bytes)
        text += Byte(c) < 0x80 ? std::string(1, c) : Wide(c);
    return text;
}

std::string DoseWithUnit(std::uint64_t dose) {
    std::size_t unit = 0;
    for (; dose != 0 && dose % 1000 == 0 && unit + 1 < kDoseUnits.size(); ++unit)
        dose /= 1000;
    return std::to_string(dose).append(" ").append(kDoseUnits[unit]);
}

}  // namespace vxfileio::helpers
