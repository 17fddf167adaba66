#pragma once

/// @file
/// The terminal functions of the operating system.

namespace vxfile {

/// Returns whether standard output is a terminal.
bool IsOutputTerminal();

/// Returns whether standard error is a terminal.
bool IsErrorTerminal();

/// Returns the width of the terminal in characters; 80 if unknown.
int TerminalWidth();

/// From now on, bytes are passed to standard output unchanged, including line ends.
void MakeOutputBinary();

/// Prepares the terminal for colours and for rewriting lines. Returns false if it can't do that.
bool EnableColours();

}  // namespace vxfile
