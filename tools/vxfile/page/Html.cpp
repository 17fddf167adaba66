#include "tools/vxfile/page/Html.h"

namespace vxfile::page {

namespace {

/// Returns the reference for a character that has a meaning in markup; empty for all others.
std::string_view ReferenceFor(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
    }
}

std::string Escaped(std::string_view text, std::string_view special) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (special.find(c) == std::string_view::npos) {
            escaped += c;
        } else {
            escaped += ReferenceFor(c);
        }
    }
    return escaped;
}

}  // namespace

std::string EscapedText(std::string_view text) { return Escaped(text, "&<>"); }

std::string EscapedAttribute(std::string_view text) { return Escaped(text, "&<>\"'"); }

std::string AddressOf(std::string_view name) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string address;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos) {
            address += c;
        } else {
            address.append({'%', kDigits[byte >> 4U], kDigits[byte & 15U]});
        }
    }
    return address;
}

CHtml::CHtml() : m_bytes("<!doctype html>\n") {}

void CHtml::StartTag(std::string_view tag, CAttributes attributes) {
    m_bytes.append("<").append(tag);
    for (const auto& [name, value] : attributes) {
        if (name.empty()) continue;
        m_bytes.append(" ").append(name);
        if (!value.empty()) m_bytes.append("=\"").append(EscapedAttribute(value)).append("\"");
    }
    m_bytes += '>';
}

void CHtml::EndTag(std::string_view tag) {
    m_bytes.append("</").append(tag).append(">");
    const bool isInline = tag.size() < 3 || tag == "span" || tag == "title" || tag == "label";
    if (!isInline || tag == "tr" || tag == "li" || tag.front() == 'h') m_bytes += '\n';
}

void CHtml::Element(std::string_view tag, CAttributes attributes, const std::function<void()>& content) {
    StartTag(tag, attributes);
    content();
    EndTag(tag);
}

void CHtml::Element(std::string_view tag, CAttributes attributes, std::string_view text) {
    StartTag(tag, attributes);
    Text(text);
    EndTag(tag);
}

void CHtml::Void(std::string_view tag, CAttributes attributes) { StartTag(tag, attributes); }

void CHtml::Text(std::string_view text) { m_bytes += EscapedText(text); }

void CHtml::Embed(std::string_view tag, std::string_view asset) {
    StartTag(tag, {});
    m_bytes += asset;
    EndTag(tag);
}

void CHtml::Data(std::string_view id, const CJson& json) {
    StartTag("script", {{"type", "application/json"}, {"id", std::string(id)}});
    const std::string text = json.dump(-1, ' ', true);
    std::size_t begin = 0;
    for (std::size_t end = text.find('<'); end != std::string::npos; end = text.find('<', begin)) {
        m_bytes.append(text, begin, end - begin).append("\\u003c");  // so that no text ends the element
        begin = end + 1;
    }
    m_bytes.append(text, begin);
    EndTag("script");
}

void CHtml::RawData(std::string_view id, std::string_view text) {
    StartTag("script", {{"type", "text/plain"}, {"id", std::string(id)}});
    m_bytes += text;
    EndTag("script");
}

}  // namespace vxfile::page
