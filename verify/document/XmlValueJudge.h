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

/// Compares the text of an element, with its references undecoded, with the form in which the library writes such a
/// value. Returns nothing if it has this form.
std::optional<CValueFault> JudgeXmlValue(const vxfileio::xmlarchive::CXmlElement& rule, std::string_view text);

/// Returns the number of samples in the text of a list of samples, which is the number of its semicolons.
std::size_t CountSamples(std::string_view text);

}  // namespace vxfile
