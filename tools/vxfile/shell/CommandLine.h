#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "tools/vxfile/shell/Manual.h"

/// @file
/// The command line: what help says about it, and what is said about one that is wrong.

namespace vxfile {

/// Tells the parser the program, its commands and their options.
void Describe(CLI::App& app, const CCommands& commands);

/// Returns a check whose refusal says in words what is wanted, such as "a whole number".
CLI::Validator Wanted(const CLI::Validator& check, const std::string& wanted);

/// Throws `CFailure` if the word is no command, with the one that was most likely meant.
void RefuseUnknownCommand(const CCommands& commands, std::string_view word);

/// Throws `CFailure`: what is wrong with the arguments of a command, and where to look it up.
[[noreturn]] void RefuseCommandLine(const CLI::App& app, const CLI::ParseError& error);

}  // namespace vxfile
