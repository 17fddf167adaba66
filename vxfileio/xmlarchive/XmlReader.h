#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

    /// The text of the value, its references not yet decoded; nothing if the element has no text.
    std::optional<std::string_view> Value() const;

    /// Reads the same into `text` with its references decoded; empty without text.
    void ReadText(std::string& text) const;

    /// Returns the text after the element's start tag: decoded, or unchanged if it has a CDATA section.
    std::string ElementText() const;

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

    std::string m_decoded;
    std::size_t m_valueAt = 0;  ///< The offset in the element where the search for the next value begins.
    /// The number of entries left for the lists of the document; set by the first.
    std::optional<std::size_t> m_listEntries;
};

/// Reads a number from the front of `text` in the type of `value`; see the values of `CXMLArchive`.
void ParseValue(std::string_view text, std::int32_t& value);
void ParseValue(std::string_view text, bool& value);
void ParseValue(std::string_view text, std::int64_t& value);
void ParseValue(std::string_view text, std::uint64_t& value);
void ParseValue(std::string_view text, double& value);
void ParseValue(std::string_view text, std::uint16_t& value);
void ParseValue(std::string_view text, std::uint32_t& value);

}  // namespace gd_xml_stream
