#pragma once

#include <string_view>

/// @file
/// What results files consist of, beside the fields of each class.

namespace vxfileio::results {

inline constexpr std::string_view kResultsFileType = "VXResults";
inline constexpr std::string_view kResultsOpenFailed = "Could not open results file: ";

inline constexpr std::string_view kResultsElement = "Results";
inline constexpr std::string_view kTaskElement = "Task";
inline constexpr std::string_view kRecordingElement = "Recording";
inline constexpr std::string_view kWellElement = "Well";
inline constexpr std::string_view kWellIDElement = "WellID";
inline constexpr std::string_view kResponseElement = "Response";

}  // namespace vxfileio::results
