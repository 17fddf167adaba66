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
/// How these look.
extern const CAsset kDygraphsStyle;
/// Under which terms dygraphs may be passed on: its licence goes into each page.
extern const CAsset kDygraphsLicence;
/// What the page does when somebody chooses something.
extern const CAsset kPageScript;
/// What an index does when somebody searches or sorts.
extern const CAsset kIndexScript;
/// How the page looks.
extern const CAsset kPageStyle;

/// Returns the name by which a content security policy allows a script, such as "'sha256-...'".
std::string PolicyNameOf(const CAsset& script);

}  // namespace vxfile::page
