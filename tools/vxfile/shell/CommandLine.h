#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

#include "tools/vxfile/shell/Manual.h"

/// @file
/// The command line: what help says about it, and what is said about one that is wrong.

namespace vxfile {

/// Tells the parser the program, its commands and their options.
void Describe(CLI::App& app, const CCommands& commands);

/// Returns a check whose refusal says in words what is wanted, such as "a whole number".
CLI::Validator Wanted(const CLI::Validator& check, const std::string& wanted);

/// Returns a check that accepts the decimal numbers of an integer type. The parser would take 010 for 8, and a number
/// beyond the range for the nearest in it.
template <class Number>
CLI::Validator WholeNumber() {
    const auto judge = [](std::string& text) {
        Number number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size()) return std::string("no number");
        text = std::to_string(number);
        return std::string();
    };
    return {judge, ""};
}

/// Throws `CFailure` if the word is no command, with the one that was most likely meant.
void RefuseUnknownCommand(const CCommands& commands, std::string_view word);

/// Throws `CFailure`: what is wrong with the arguments of a command, and where to look it up.
[[noreturn]] void RefuseCommandLine(const CLI::App& app, const CLI::ParseError& error);

}  // namespace vxfile
