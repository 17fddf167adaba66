#pragma once

#include <string_view>

/// @file
/// The bytes that identify the kinds of files that aren't documents.

namespace vxfileio::base {

/// The text that every raw data file begins with. More text may follow in its cell.
inline constexpr std::string_view kRawDataMark = "OVL Vexaprobe";

/// The bytes that every compound file begins with, and so every workbook.
inline constexpr std::string_view kCompoundMark = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

}  // namespace vxfileio::base
