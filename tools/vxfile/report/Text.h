#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "verify/Text.h"
#include "vxfileio/helpers/PrintableText.h"

/// @file
/// Texts for people.

namespace vxfile {

/// Returns how many characters a text in UTF-8 has.
std::size_t Width(std::string_view text);

/// Returns the first characters of such a text, as many as there is room for.
std::string_view Cut(std::string_view text, std::size_t width);

/// Returns a text with small letters for the capitals of ASCII.
std::string Lowered(std::string text);

/// Returns a Guid in the form in which Guids are compared: without braces, in small letters.
std::string BareGuid(const std::string& guid);

/// Returns a size such as "4.2 KiB".
std::string SizeText(std::int64_t bytes);

using vxfileio::helpers::DoseWithUnit;
using vxfileio::helpers::kDoseUnits;

/// Returns the same for the dose of a recording, which is in picomolar if it is negative.
std::string DoseText(std::int64_t dose);

/// Returns the dose in picomolar that a text such as "100nM", "0.5 uM" or "0" means; nothing if it has no unit, has
/// another form, or isn't a whole number of picomolar that 64 bits hold.
std::optional<std::int64_t> ParseDose(std::string_view text);

}  // namespace vxfile
