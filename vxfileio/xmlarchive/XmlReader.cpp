#include "vxfileio/xmlarchive/XmlReader.h"

#include <algorithm>

#include "vxfileio/base/FileMarks.h"
#include "vxfileio/xmlarchive/DocumentKinds.h"
#include "vxfileio/xmlarchive/XmlElement.h"
#include "vxfileio/xmlarchive/XmlText.h"

namespace gd_xml_stream {

using namespace vxfileio::xmlarchive;
using vxfileio::helpers::ENumberFault;
using vxfileio::helpers::ReadNumber;
using vxfileio::helpers::TakeDecimal;

namespace {

template <class Value>
XmlValue Parsed(std::string_view text) {
    Value value{};
    static_cast<void>(ParseValue(text, value));
    return value;
}

/// Removes a number of the usual form and its semicolon from the front of `text`. Returns false and changes nothing for
/// other forms.
inline bool TakePlainSample(std::string_view& text, double& sample) {
    std::string_view after = text;
    double decimal = 0.0;
    if (!TakeDecimal(after, decimal) || !after.starts_with(';')) return false;
    sample = decimal;
    text = after.substr(1);
    return true;
}

/// Returns the kind of a file that begins with these bytes, up to a NUL, in words; empty if it isn't another kind than
/// a document.
std::string_view OtherKind(std::string_view beginning, bool endsInNul) {
    using namespace vxfileio::base;
    if (beginning.empty()) return endsInNul ? "a file that begins with a NUL" : "an empty file";
    if (beginning.starts_with(kRawDataMark)) return "a raw data file";
    if (beginning.starts_with(kCompoundMark)) return "a workbook";
    return {};
}

/// Returns the name of a kind of document by its section.
std::string NameOf(std::string_view section) {
    const auto* const kind = std::ranges::find(kDocumentKinds, section, &CDocumentKind::section);
    return kind == kDocumentKinds.end() ? "document" : std::string(kind->name);
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

void XmlReader::ReadText(std::string& text) {
    CheckValue();
    text.clear();
    AppendDecoded(Value().value_or(std::string_view()), text);
}

std::string_view XmlReader::Text(std::string& room) {
    CheckValue();
    return PlainText(room);
}

std::string_view XmlReader::PlainText(std::string& room) const {
    const std::string_view text = Value().value_or(std::string_view());
    if (text.find('&') == std::string_view::npos) return text;
    room.clear();
    AppendDecoded(text, room);
    return room;
}

/// Reports if the value of the current element comes from an attribute that the caller didn't request, because it
/// precedes the text.
void XmlReader::NoteAttribute() {
    const std::size_t mark = Element().find_first_of(">\"", Name().size());
    if (m_valueAt > 0 || mark == std::string_view::npos || Element()[mark] == '>') return;
    if (auto* const first = m_faults.Add(XmlFault::Attribute)) {
        const std::string_view value = Value().value_or(std::string_view());
        *first = {1, TextOffset(), Path(), std::string(value.substr(0, XmlFaults::kMostShown)), {}};
    }
}

std::string XmlReader::ElementText() {
    if ((State() & XmlState::kHasChildren) != 0) NoteText(XmlFault::CutText, {});
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
    constexpr std::string_view kUsual = " Size=\"";
    const std::string_view attributes = Element().substr(Name().size());
    XmlValue claimed(std::int64_t{0});
    if (attributes.starts_with(kUsual)) {  // other programs have other attributes, too
        claimed = Parsed<std::int64_t>(attributes.substr(kUsual.size()));
    } else {
        ReadAttribute(kListSize, claimed);
    }
    MakeList(claimed.AsInt64());
    constexpr std::int64_t kMostEntries = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::size_t>(std::clamp<std::int64_t>(claimed.AsInt64(), 0, kMostEntries));
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
    std::string_view text = Text(m_decoded);
    const std::string_view whole = text;
    double* sample = samples.data();
    const double* const end = sample + samples.size();
    while (sample != end && (TakePlainSample(text, *sample) || TakeSample(text, *sample, whole)))
        ++sample;
    auto taken = static_cast<std::size_t>(sample - samples.data());
    taken += static_cast<std::size_t>(std::ranges::count(text, ';'));
    CheckCount(Level(), taken, {});
    Level().claimed = kAnyNumber;  // its children aren't its entries
}

/// Does the same for a number of any form, or for something else in its place. `text` is the rest of `whole`. Reports
/// what isn't a number. Returns false and changes nothing if there is no semicolon.
bool XmlReader::TakeSample(std::string_view& text, double& sample, std::string_view whole) {
    const std::size_t semicolon = text.find(';');
    if (semicolon == std::string_view::npos) return false;
    const std::string_view number = text.substr(0, semicolon);
    const ENumberFault fault = ReadNumber(number, sample);
    if (fault != ENumberFault::None) NoteNumber(fault, number, whole.size() - text.size(), RangeOf<double>);
    text.remove_prefix(semicolon + 1);
    return true;
}

/// Reports the fault of a number whose text is at offset `at` in that of the element.
void XmlReader::NoteNumber(ENumberFault fault, std::string_view text, std::size_t at,
                           std::string (*range)(ENumberFault)) {
    const auto kind = fault == ENumberFault::NoNumber ? XmlFault::NoNumber : XmlFault::OutOfRange;
    if (auto* const first = m_faults.Add(kind))
        *first = {1, TextOffset() + at, Path(), std::string(text.substr(0, XmlFaults::kMostShown)), range(fault)};
}

void XmlReader::NoteText(XmlFault kind, std::span<const std::string_view> words) {
    auto* const first = m_faults.Add(kind);
    if (first == nullptr) return;
    const std::string_view text = PlainText(m_decoded).substr(0, XmlFaults::kMostShown);
    *first = {1, TextOffset(), Path(), std::string(text), OneOf(words)};
}

void XmlReader::NoteMissingKey(std::string_view key) {
    if (Element().empty()) return;
    if (auto* const first = m_faults.Add(XmlFault::NoKey))
        *first = {1, TextOffset(), Path(), std::string(Name().substr(0, XmlFaults::kMostShown)), std::string(key)};
}

std::string XmlReader::Finish(std::string_view section) {
    const bool isOpen = (State() & XmlState::kHasChildren) != 0;
    const bool isRead = !isOpen && Name() == section;
    while (!IsRootClosed() && Next()) {
    }
    const bool isWhole = !IsRootClosed() || SkipEpilog();
    const std::uint64_t end = Offset();
    std::string text;
    if (IsReadFailed()) text = std::string(kReadRefused) + std::to_string(end) + '.';
    const std::string_view other = IsReadFailed() ? std::string_view() : OtherKind(Beginning(), EndsInNul());
    if (!other.empty()) return "This is " + std::string(other) + ", not a " + NameOf(section) + '.';
    const auto add = [&](const std::string& sentence) {
        text += (text.empty() || sentence.empty() ? "" : " ") + sentence;
    };
    if (!isRead && !IsReadFailed()) add(SectionText(section));
    if (Root() != kRootElement && (isRead || !Root().empty()))
        add("The root element is <" + std::string(Root()) + ">, expected <" + std::string(kRootElement) + ">.");
    add(m_faults.Text());
    if (!isWhole) add("What follows the root, from offset " + std::to_string(end) + " on, wasn't read.");
    return text;
}

/// Returns why the section wasn't read to its end; empty if the faults say so.
std::string XmlReader::SectionText(std::string_view section) const {
    const std::string name = NameOf(section);
    for (const auto& kind : kDocumentKinds) {
        if (kind.section != section && HasSection(kind.section))
            return "This is a " + std::string(kind.name) + ", not a " + name + '.';
    }
    const std::string tag = '<' + std::string(section) + '>';
    if (HasSection(kHeaderElement) && !HasSection(section)) return "The document has no element " + tag + '.';
    if (Root().empty()) return "The document has no elements that a " + name + " has.";
    if (IsAhead(kHeaderElement, section)) return {};
    return "The document has no <" + std::string(kHeaderElement) + "> ahead of " + tag + ", so nothing was read.";
}

ENumberFault ParseValue(std::string_view text, bool& value) {
    std::int32_t number = 0;
    const ENumberFault fault = ReadNumber(text, number);
    value = number == 1;
    return fault == ENumberFault::None && number != 0 && number != 1 ? ENumberFault::OutOfRange : fault;
}

ENumberFault ParseValue(std::string_view text, std::uint16_t& value) {
    std::uint32_t number = 0;
    const ENumberFault fault = ReadNumber(text, number);
    value = static_cast<std::uint16_t>(number & 0xFFFFU);
    return fault == ENumberFault::None && number != value ? ENumberFault::OutOfRange : fault;
}

}  // namespace gd_xml_stream
