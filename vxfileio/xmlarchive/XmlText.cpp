#include "vxfileio/xmlarchive/XmlText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace gd_xml_stream {

namespace {

constexpr std::size_t kMostDigits = 9;

constexpr std::array<std::pair<char, std::string_view>, 4> kNamedReferences{
    {{'"', "&quot;"}, {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}}};

constexpr std::array<bool, 256> kPlain = [] {
    std::array<bool, 256> plain{};
    std::fill_n(plain.begin(), 0x80, true);
    for (const auto& [byte, reference] : kNamedReferences)
        plain[static_cast<unsigned char>(byte)] = false;
    return plain;
}();

/// Removes a reference from the front of `text`, which begins with an ampersand, and stores its byte. Returns false if
/// there is none.
bool TakeReference(std::string_view& text, char& byte) {
    for (const auto& [named, reference] : kNamedReferences) {
        if (!text.starts_with(reference)) continue;
        byte = named;
        text.remove_prefix(reference.size());
        return true;
    }
    if (!text.starts_with("&#")) return false;
    const char* const first = text.data() + 2;
    const char* const last = first + std::min(kMostDigits, text.size() - 2);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc() || end == text.data() + text.size() || *end != ';') return false;
    byte = static_cast<char>(number & 0xFFU);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
    return true;
}

}  // namespace

namespace xml_text {

std::size_t PlainSize(std::string_view text) {
    const auto* const end =
        std::find_if(text.begin(), text.end(), [](char c) { return !kPlain[static_cast<unsigned char>(c)]; });
    return static_cast<std::size_t>(end - text.begin());
}

CByteReference::CByteReference(char byte) : text{'&', '#', '0', '0', '0', ';'} {
    // From 0x80 up there are always three digits.
    std::to_chars(text + 2, text + 5, static_cast<unsigned char>(byte));
}

std::string_view NamedReference(char byte) {
    for (const auto& [named, reference] : kNamedReferences) {
        if (named == byte) return reference;
    }
    return {};
}

}  // namespace xml_text

void AppendDecoded(std::string_view text, std::string& decoded) {
    while (true) {
        const std::size_t ampersand = text.find('&');
        decoded.append(text.substr(0, ampersand));
        if (ampersand == std::string_view::npos) return;
        text.remove_prefix(ampersand);
        char byte = '&';
        if (!TakeReference(text, byte)) text.remove_prefix(1);
        decoded += byte;
    }
}

}  // namespace gd_xml_stream
