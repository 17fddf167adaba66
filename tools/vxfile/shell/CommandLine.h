#pragma once

#include <string_view>

#include "tools/vxfile/shell/Command.h"

/// @file
/// The command line: how it is parsed, what help says about it, and what is said about one that is wrong. Only the
/// source behind this header includes the parser, which takes long to compile.

namespace vxfile {

/// Parses the command line into the members of the command that it names, and returns that command. Returns null if it
/// asked for help or the version, which is printed. Throws `CFailure` if the command line is wrong.
[[nodiscard]] CCommand* ParseCommandLine(const CCommands& commands, int argc, const char* const* argv);

/// What the program does, in one sentence.
inline constexpr std::string_view kProgramText =
    "Inspects, checks, converts and recovers the files of a cell screening instrument.";

/// The option that every command has, as help names and describes it.
inline constexpr std::string_view kHelpNames = "-h,--help";
inline constexpr std::string_view kHelpText = "Print this text and exit";

}  // namespace vxfile
