#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// One cell of a header, held against what the format fixes of it. Whoever needs to know whether a cell is as a writer
/// leaves it asks here, to tell it as a finding or to believe the cell or not.

namespace vxfileio::rawdata {

/// What is wrong with a cell.
enum class ECellFault {
    NoLineEnd,    ///< CR LF aren't its last bytes.
    NoPadding,    ///< No NUL byte stands ahead of them.
    Padding,      ///< Something else than NUL bytes stands behind the text.
    NoMark,       ///< It doesn't begin as the first cell of a file does.
    NoKey,        ///< It has another key.
    NotFixed,     ///< It holds something else than what all writers put there.
    LoneSign,     ///< Nothing stands behind the `=`.
    NoNumber,     ///< A number is missing.
    OtherNumber,  ///< A number isn't written as the format writes it.
    Separator,    ///< A text holds what separates items. Only whoever gave the text to a writer can have meant it.
};

/// The first fault of a cell.
struct CCellFault {
    ECellFault kind;
    std::string taken = {};  ///< What readers take a text or a number for.
};

/// @name Judging a cell
/// Each returns what is wrong with the bytes of a cell, which are as many as it is wide, or nothing.
/// @{
std::optional<CCellFault> FaultOf(const CFileCell& cell, std::string_view bytes);
std::optional<CCellFault> FaultOf(const CRecordingCell& cell, std::string_view bytes);
std::optional<CCellFault> FaultOf(const CSegmentCell& cell, std::string_view bytes);
/// @}

}  // namespace vxfileio::rawdata
