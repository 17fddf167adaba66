#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// The text form of values in the twins of the reference files.

inline std::string ReferencePath(const std::string& fileName) {
    return std::string(VXFILEIO_REFERENCE_DIR) + "/" + fileName;
}

std::string Show(std::integral auto number) { return std::to_string(number); }

inline std::string Show(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 15).ptr;
    return {text.data(), end};
}

/// Returns a text in quotes, with unprintable bytes as \xHH.
inline std::string Show(const std::string& text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 32 && byte < 127 && c != '"' && c != '\\') {
            shown += c;
        } else {
            shown += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        }
    }
    return '"' + shown + '"';
}

template <class Value>
std::string Show(const std::vector<Value>& list) {
    std::string shown;
    for (const Value& value : list)
        shown += (shown.empty() ? "" : ", ") + Show(value);
    return "[" + shown + "]";
}

std::string FieldLine(const char* key, const auto& value) {
    return std::string("  ") + key + ": " + Show(value) + "\n";
}
