#pragma once

#include <string_view>

/// @file
/// What results files have beside their elements, which are in `forms/ResultsForm.h`.

namespace vxfileio::results {

inline constexpr std::string_view kResultsFileType = "VXResults";
inline constexpr std::string_view kResultsOpenFailed = "Could not open results file: ";

}  // namespace vxfileio::results
