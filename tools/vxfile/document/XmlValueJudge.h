#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vxfileio/xmlarchive/XmlElement.h"

namespace vxfile {

/// What is wrong with a value.
struct CValueFault {
    std::string expected;
    std::string meaning;
};

/// Holds the text of an element, references as they stand, against how the library writes a value of this kind.
/// Returns nothing if it is exactly so.
std::optional<CValueFault> JudgeXmlValue(const vxfileio::xmlarchive::CXmlElement& rule, std::string_view text);

/// Returns how many samples such a text has: as many as semicolons.
std::size_t CountSamples(std::string_view text);

}  // namespace vxfile
