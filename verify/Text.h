#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/helpers/PrintableText.h"

/// @file
/// Texts of findings.

namespace vxfile {

using vxfileio::helpers::Counted;
using vxfileio::helpers::Quoted;

/// Returns a text of a file as UTF-8 that is safe on a terminal. Files don't name their code page: what isn't UTF-8
/// already is taken for Latin-1.
std::string Readable(std::string_view bytes);

/// The same with its control characters: for programs, not for terminals.
using vxfileio::helpers::Utf8;

/// Returns numbers with ", " between them; runs of neighbours are shortened to "11 - 34".
std::string ListText(const std::vector<std::int32_t>& numbers);

}  // namespace vxfile
