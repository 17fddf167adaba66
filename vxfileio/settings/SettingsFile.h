#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// @file
/// What settings files have beside their elements, which are in `forms/SettingsForm.h`.

namespace vxfileio::settings {

inline constexpr std::string_view kSettingsFileType = "VXSettings";
inline constexpr std::string_view kSettingsOpenFailed = "Could not open settings file: ";

/// The first version whose files hold the analyzer's marks; from older ones they are made up.
inline constexpr std::int32_t kFirstVersionWithMarks = 3;

/// The most marks that are made up. No plate has so many wells and doses, and a file that claims them would otherwise
/// take memory as the product of two lists.
inline constexpr std::size_t kMostMadeMarks = 100'000;

}  // namespace vxfileio::settings
