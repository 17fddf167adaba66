#pragma once

#include <string>
#include <string_view>

/// @file
/// The files that were embedded when the program was built: those of the folder assets, and dygraphs.

namespace vxfile::page {

/// One file.
struct CAsset {
    std::string_view text;
    std::string_view sha256;  ///< Of the text, as 64 hexadecimal digits.
};

/// Draws zoomable charts.
extern const CAsset kDygraphsScript;
/// Its style sheet.
extern const CAsset kDygraphsStyle;
/// The licence of dygraphs, which each page must include.
extern const CAsset kDygraphsLicence;
/// The script that handles choices on the page.
extern const CAsset kPageScript;
/// The script that searches and sorts an index.
extern const CAsset kIndexScript;
/// The style sheet of the page.
extern const CAsset kPageStyle;

/// Returns the name by which a content security policy allows a script, such as "'sha256-...'".
std::string PolicyNameOf(const CAsset& script);

}  // namespace vxfile::page
