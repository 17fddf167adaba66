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

}  // namespace vxfileio::helpers
