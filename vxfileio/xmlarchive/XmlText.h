#pragma once

#include <string>
#include <string_view>

/// @file
/// The coding of text in a document: four named references, decimal ones, and all other bytes unchanged.

namespace gd_xml_stream {

/// Passes `text` to `append` in pieces, with references in place of `"`, `&`, `<`, `>` and the
/// bytes from 0x80 up. The other bytes, line ends and tabs among them, stay as they are.
template <class Append>
void PutCoded(std::string_view text, Append append);

/// Appends `text` to `decoded` with each reference replaced by its byte. A decimal reference has up to nine digits, of
/// whose number the low eight bits count. What is no reference stays as it is, ampersand and all.
void AppendDecoded(std::string_view text, std::string& decoded);

namespace xml_text {

/// Returns how many bytes at the front of `text` stand for themselves.
std::size_t PlainSize(std::string_view text);

/// A byte as a decimal reference: `&#` , three digits, `;`.
struct CByteReference {
    explicit CByteReference(char byte);
    char text[6];
};

/// Returns the named reference of one of the four, or nothing.
std::string_view NamedReference(char byte);

}  // namespace xml_text

template <class Append>
void PutCoded(std::string_view text, Append append) {
    while (true) {
        const std::size_t plain = xml_text::PlainSize(text);
        append(text.substr(0, plain));
        if (plain == text.size()) return;
        const std::string_view named = xml_text::NamedReference(text[plain]);
        if (named.empty()) {
            const xml_text::CByteReference reference(text[plain]);
            append(std::string_view(reference.text, sizeof reference.text));
        } else {
            append(named);
        }
        text.remove_prefix(plain + 1);
    }
}

}  // namespace gd_xml_stream
