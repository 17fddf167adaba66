#pragma once

#include <ostream>

#include "tools/vxfile/shell/Command.h"

/// @file
/// The manual page and the completion of the shell, out of the same description as `--help`.

namespace vxfile {

/// Writes the manual page in the language of `man`.
void WriteManual(const CCommands& commands, std::ostream& out);

/// Writes the completion for bash: commands, their options, and files.
void WriteCompletion(const CCommands& commands, std::ostream& out);

}  // namespace vxfile
