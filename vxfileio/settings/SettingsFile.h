#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// @file
/// What settings files consist of, beside their sections.

namespace vxfileio::settings {

inline constexpr std::string_view kSettingsFileType = "VXSettings";
inline constexpr std::string_view kSettingsElement = "Settings";
/// The sections, in the order of writing; they are read in any.
inline constexpr std::string_view kControlElement = "PropertyControl";
inline constexpr std::string_view kNotebookElement = "PropertyNotebook";
inline constexpr std::string_view kRobotElement = "PropertyRobot";
inline constexpr std::string_view kRecordPlateElement = "PropertyRecordPlate";
inline constexpr std::string_view kQualityCheckElement = "PropertyQualityCheck";
inline constexpr std::string_view kWashInElement = "PropertyWashIn";
inline constexpr std::string_view kRecordingElement = "PropertyRecording";
inline constexpr std::string_view kAnalyzerElement = "PropertyAnalyzer";
inline constexpr std::string_view kOlderRecordingElement = "PropRecording";  ///< Read, never written.

inline constexpr std::string_view kSettingsOpenFailed = "Could not open settings file: ";

/// The first version whose files hold the analyzer's marks; from older ones they are made up.
inline constexpr std::int32_t kFirstVersionWithMarks = 3;

/// The most marks that are made up. No plate has so many wells and doses, and a file that claims them would otherwise
/// take memory as the product of two lists.
inline constexpr std::size_t kMostMadeMarks = 100'000;

}  // namespace vxfileio::settings
