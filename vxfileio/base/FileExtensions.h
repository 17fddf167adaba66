#pragma once

#include <string_view>

/// @file
/// The file extensions of the system. They are for callers: the library itself neither adds nor tests any.

namespace vxfileio {

inline constexpr std::string_view kRawDataExtension = ".vxd";   ///< Raw data files.
inline constexpr std::string_view kSettingsExtension = ".vxs";  ///< Settings files.
inline constexpr std::string_view kResultsExtension = ".vxr";   ///< Results files.
inline constexpr std::string_view kVxtExtension = ".vxt";       ///< Nothing in the library uses it.

}  // namespace vxfileio
