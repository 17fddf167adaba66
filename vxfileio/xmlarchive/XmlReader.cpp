#include "vxfileio/xmlarchive/XmlReader.h"

#include <algorithm>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/xmlarchive/XmlText.h"

namespace gd_xml_stream {

namespace {

template <class Value>
XmlValue Parsed(std::string_view text) {
    Value value{};
    ParseValue(text, value);
    return value;
}

/// Takes a number and its semicolon off the front of `text`. Returns false, and changes nothing, without a semicolon.
bool TakeSample(std::string_view& text, double& sample) {
    std::string_view after = text;
    double decimal = 0.0;
    if (vxfileio::helpers::TakeDecimal(after, decimal) && after.starts_with(';')) {
        sample = decimal;
        text = after.substr(1);
        return true;
    }
    const std::size_t semicolon = text.find(';');
    if (semicolon == std::string_view::npos) return false;
    sample = vxfileio::helpers::ParseDouble(text.substr(0, semicolon));
    text.remove_prefix(semicolon + 1);
    return true;
}

}  // namespace

std::optional<std::string_view> XmlReader::Value() const {
    const std::string_view element = Element();
    std::size_t mark = std::max(m_valueAt, Name().size());
    while (mark < element.size() && element[mark] != '>' && element[mark] != '"')
        ++mark;
    if (mark + 1 >= element.size()) return std::nullopt;
    const std::string_view value = element.substr(mark + 1);
    return element[mark] == '"' ? value.substr(0, value.find('"')) : value;
}

void XmlReader::ReadText(std::string& text) const {
    text.clear();
    AppendDecoded(Value().value_or(std::string_view()), text);
}

std::string XmlReader::ElementText() const {
    const std::string_view element = Element();
    const std::size_t tagEnd = element.find('>');
    if (tagEnd == std::string_view::npos || IsSelfClosing()) return {};
    const std::string_view text = element.substr(tagEnd + 1);
    if ((State() & XmlState::kHasSection) != 0) return std::string(text);
    std::string decoded;
    AppendDecoded(text, decoded);
    return decoded;
}

/// Returns the offset of an attribute's value, after its double quote. Only double quotes delimit values.
std::optional<std::size_t> XmlReader::FindAttribute(std::string_view name) const {
    const std::string_view element = Element();
    std::size_t at = Name().size();
    while (true) {
        at += RunOf(element.substr(at), kBlank);
        if (at == element.size() || element[at] == '>') return std::nullopt;
        const std::size_t after = at + name.size();
        const bool found = element.substr(at).starts_with(name) &&
                           (after == element.size() || element[after] == '=' || Is(element[after], kBlank));
        const std::size_t opening = element.find('"', at);
        if (opening == std::string_view::npos || opening + 1 == element.size()) return std::nullopt;
        if (found) return opening + 1;
        const std::size_t closing = element.find('"', opening + 1);
        if (closing == std::string_view::npos) return std::nullopt;
        at = closing + 1;
    }
}

bool XmlReader::ReadAttribute(std::string_view name, XmlValue& value) {
    const auto start = FindAttribute(name);
    if (!start) return false;
    const std::string_view rest = Element().substr(*start);
    const std::string_view text = rest.substr(0, rest.find('"'));
    m_valueAt = std::min(Element().size(), *start + text.size() + 1);
    value = ValueOf(value.Type(), text);
    return true;
}

/// Reads a value of this type from the text of an attribute.
XmlValue XmlReader::ValueOf(XmlType type, std::string_view text) {
    switch (type) {
        case XmlType::Int32:
            return Parsed<std::int32_t>(text);
        case XmlType::UInt16:
            return Parsed<std::uint16_t>(text);
        case XmlType::UInt32:
            return Parsed<std::uint32_t>(text);
        case XmlType::Int64:
            return Parsed<std::int64_t>(text);
        case XmlType::UInt64:
            return Parsed<std::uint64_t>(text);
        case XmlType::Double:
            return Parsed<double>(text);
        case XmlType::Bool:
            return Parsed<bool>(text);
        default:
            m_decoded.clear();
            AppendDecoded(text, m_decoded);
            return m_decoded;
    }
}

std::size_t XmlReader::ReadListClaim() {
    XmlValue claimed(std::int32_t{0});
    ReadAttribute(kListSize, claimed);
    return static_cast<std::size_t>(std::max(claimed.AsInt32(), std::int32_t{0}));
}

std::size_t XmlReader::ReadListSize() {
    constexpr std::size_t kLeastBytesPerEntry = 2;  // a digit and a semicolon
    const std::size_t claimed = ReadListClaim();
    const std::size_t possible = Remaining() / kLeastBytesPerEntry;
    if (!m_listEntries) m_listEntries = Remaining() + ElementSize();
    // A list that claims more than can follow must leave room for later lists.
    const std::size_t room = claimed <= possible ? *m_listEntries : *m_listEntries - std::min(*m_listEntries, possible);
    const std::size_t granted = std::min(claimed, room);
    *m_listEntries -= granted;
    return granted;
}

void XmlReader::ReadSamples(std::vector<double>& samples) {
    std::string_view text = Value().value_or(std::string_view());
    if (text.find('&') != std::string_view::npos) {
        ReadText(m_decoded);
        text = m_decoded;
    }
    for (double& sample : samples) {
        if (!TakeSample(text, sample)) return;
    }
}

void ParseValue(std::string_view text, std::int32_t& value) { value = vxfileio::helpers::ParseInt32(text); }
void ParseValue(std::string_view text, bool& value) { value = vxfileio::helpers::ParseInt32(text) == 1; }
void ParseValue(std::string_view text, std::int64_t& value) { value = vxfileio::helpers::ParseInt64(text); }
void ParseValue(std::string_view text, std::uint64_t& value) { value = vxfileio::helpers::ParseUInt64(text); }
void ParseValue(std::string_view text, double& value) { value = vxfileio::helpers::ParseDouble(text); }
void ParseValue(std::string_view text, std::uint16_t& value) {
    value = static_cast<std::uint16_t>(vxfileio::helpers::ParseUInt32(text) & 0xFFFFU);
}
void ParseValue(std::string_view text, std::uint32_t& value) { value = vxfileio::helpers::ParseUInt32(text); }

}  // namespace gd_xml_stream
