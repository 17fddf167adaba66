#pragma once

#include <string_view>

#include "tools/vxfile/shell/Command.h"

/// @file
/// The command line: parsing, help, and errors. Only this header's source includes the parser, which takes long to
/// compile.

namespace vxfile {

/// Parses the command line into the members of its command, and returns that command. If it asks for help or the
/// version, prints that and returns null. Throws `CFailure` if the command line is wrong.
[[nodiscard]] CCommand* ParseCommandLine(const CCommands& commands, int argc, const char* const* argv);

/// The purpose of the program, in one sentence.
inline constexpr std::string_view kProgramText =
    "Inspects, checks, converts and recovers the files of a cell screening instrument.";

/// The option that every command has, with its name and description in help.
inline constexpr std::string_view kHelpNames = "-h,--help";
inline constexpr std::string_view kHelpText = "Print this text and exit";

}  // namespace vxfile
