#pragma once

#include <array>
#include <string_view>

/// @file
/// The common features of the library's documents, and those that distinguish them.

namespace vxfileio::xmlarchive {

inline constexpr std::string_view kRootElement = "Vexaprobe";
inline constexpr std::string_view kHeaderElement = "Header";  ///< The first child of every root.

/// One kind of document.
struct CDocumentKind {
    std::string_view name;      ///< In words.
    std::string_view section;   ///< The tag of the section after the header.
    std::string_view fileType;  ///< The header's `FileType` in files of this library.
};

inline constexpr CDocumentKind kSettingsDocument{"settings file", "Settings", "VXSettings"};
inline constexpr CDocumentKind kResultsDocument{"results file", "Results", "VXResults"};
inline constexpr std::array kDocumentKinds{kSettingsDocument, kResultsDocument};

/// The beginning of a reader's error if the system refused to read the file to its end. The offset follows.
inline constexpr std::string_view kReadRefused = "The system refused to read beyond offset ";

}  // namespace vxfileio::xmlarchive
