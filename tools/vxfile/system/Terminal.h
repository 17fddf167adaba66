#pragma once

/// @file
/// What the program has to know of the system's terminals.

namespace vxfile {

/// Tells whether standard output is a terminal.
bool IsOutputTerminal();

/// Tells whether standard error is a terminal.
bool IsErrorTerminal();

/// Returns how many characters a line of the terminal has; 80 if nobody knows.
int TerminalWidth();

/// From now on bytes pass to standard output as they are, line ends too.
void MakeOutputBinary();

/// Gets the terminal ready for colours and lines that are written again. Returns false if it can't do that.
bool EnableColours();

}  // namespace vxfile
