#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/xmlarchive/XmlScanner.h"
#include "vxfileio/xmlarchive/XmlValue.h"

namespace gd_xml_stream {

/// The loading half of an archive: a scanner that finds values in its current element.
class XmlReader : public XmlScanner {
 public:
    using XmlScanner::XmlScanner;

    /// Moves to the next event; see `XmlScanner::Next`.
    bool Next() {
        m_valueAt = 0;
        return XmlScanner::Next();
    }

    /// Reads the value as a number or bool, and notes if it isn't one. Leaves `value` unchanged without text.
    template <class Number>
    void ReadValue(Number& value);

    /// Notes that the text of the current element isn't a value of its kind. `words` are those of an unknown word.
    void NoteText(XmlFault kind, std::span<const std::string_view> words);

    /// Notes that the current element, if there is one, is in place of the key with this tag.
    void NoteMissingKey(std::string_view key);

    /// Moves past the end of the root. Returns sentences about what was wrong with the document, whose section with
    /// this tag should have been read last; empty if nothing was.
    std::string Finish(std::string_view section);

    /// The text of the value, its references not yet decoded; nothing if the element has no text.
    std::optional<std::string_view> Value() const;

    /// Reads the same into `text` with its references decoded; empty without text.
    void ReadText(std::string& text);

    /// Returns the same text, in place if it has no references, otherwise from `room`.
    std::string_view Text(std::string& room);

    /// Returns the text after the element's start tag: decoded, or unchanged if it has a CDATA section.
    std::string ElementText();

    /// Reads an attribute into `value`, in its type. Returns false if it is absent.
    bool ReadAttribute(std::string_view name, XmlValue& value);

    /// Returns the number of entries that the current list claims to have, at least 0.
    std::size_t ReadListClaim();

    /// Returns the number of entries that the current list may have; see `CXMLArchive::GetListSize`.
    std::size_t ReadListSize();

    /// Reads the value as numbers; see `CXMLArchive::GetSamples`.
    void ReadSamples(std::vector<double>& samples);

 private:
    std::optional<std::size_t> FindAttribute(std::string_view name) const;
    XmlValue ValueOf(XmlType type, std::string_view text);
    std::string_view PlainText(std::string& room) const;
    void NoteAttribute();
    /// Reports if the current element has an attribute before its value, or something other than its end tag after it.
    void CheckValue() {
        if (Element().size() > Name().size() && Element()[Name().size()] != '>') NoteAttribute();
        if ((State() & XmlState::kHasChildren) != 0) NoteText(XmlFault::CutText, {});
    }
    void NoteNumber(vxfileio::helpers::ENumberFault fault, std::string_view text, std::size_t at,
                    std::string (*range)(vxfileio::helpers::ENumberFault));
    bool TakeSample(std::string_view& text, double& sample, std::string_view whole);
    std::string SectionText(std::string_view section) const;

    std::string m_decoded;
    std::size_t m_valueAt = 0;  ///< The offset in the element where the search for the next value begins.
    /// The number of entries left for the lists of the document; set by the first.
    std::optional<std::size_t> m_listEntries;
};

/// Reads a number from the front of `text` in the type of `value`; see the values of `CXMLArchive`. Returns whether the
/// text is a value of this type and nothing else.
template <class Value>
vxfileio::helpers::ENumberFault ParseValue(std::string_view text, Value& value) {
    return vxfileio::helpers::ReadNumber(text, value);
}
vxfileio::helpers::ENumberFault ParseValue(std::string_view text, bool& value);
vxfileio::helpers::ENumberFault ParseValue(std::string_view text, std::uint16_t& value);

/// Returns what a text must be to be read as this type, such as "a whole number from 0 to 65535".
template <class Number>
std::string RangeOf([[maybe_unused]] vxfileio::helpers::ENumberFault fault) {
    using Limits = std::numeric_limits<Number>;
    if constexpr (std::is_same_v<Number, bool>) {
        return "0 or 1";
    } else if constexpr (std::is_floating_point_v<Number>) {
        return fault == vxfileio::helpers::ENumberFault::OutOfRange ? "a number that a double can hold" : "a number";
    } else {
        return "a whole number from " + std::to_string(Limits::min()) + " to " + std::to_string(Limits::max());
    }
}

template <class Number>
void XmlReader::ReadValue(Number& value) {
    using vxfileio::helpers::ENumberFault;
    CheckValue();
    const auto text = Value();
    const ENumberFault fault = text ? ParseValue(*text, value) : ENumberFault::NoNumber;
    if (fault != ENumberFault::None) NoteNumber(fault, text.value_or(std::string_view()), 0, RangeOf<Number>);
}

}  // namespace gd_xml_stream
