#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// Checks one cell of a header against the format: whether it is as a writer leaves it.

namespace vxfileio::rawdata {

/// What is wrong with a cell.
enum class ECellFault {
    NoLineEnd,    ///< CR LF aren't its last bytes.
    NoPadding,    ///< No NUL byte precedes them.
    Padding,      ///< Something other than NUL bytes follows the text.
    NoMark,       ///< It doesn't begin as the first cell of a file does.
    NoKey,        ///< It has another key.
    NotFixed,     ///< It holds something other than what all writers put there.
    LoneSign,     ///< Nothing follows the `=`.
    NoNumber,     ///< A number is missing.
    OtherNumber,  ///< A number isn't written as the format writes it.
    Separator,    ///< A text contains a separator. No writer adds one; the text was passed to it like that.
};

/// The first fault of a cell.
struct CCellFault {
    ECellFault kind;
    std::string taken = {};  ///< The text or number that readers get instead.
};

/// @name Judging a cell
/// Each returns what is wrong with the bytes of a cell, which are as many as it is wide, or nothing.
/// @{
std::optional<CCellFault> FaultOf(const CFileCell& cell, std::string_view bytes);
std::optional<CCellFault> FaultOf(const CRecordingCell& cell, std::string_view bytes);
std::optional<CCellFault> FaultOf(const CSegmentCell& cell, std::string_view bytes);
/// @}

/// Judges a text that is to be written after this key, but not whether it has control characters.
std::optional<CCellFault> FaultOfText(std::string_view key, std::string_view text);

/// Judges one item of a list of the file header in the same way.
std::optional<CCellFault> FaultOfListItem(std::string_view text);

}  // namespace vxfileio::rawdata
