#include "tools/vxfile/shell/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <numeric>
#include <sstream>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

/// The width of help texts that aren't lists.
constexpr std::size_t kTextWidth = 80;

/// Returns how many characters must be inserted, removed or changed to convert one word to the other.
std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char c : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const std::size_t changed = diagonal + (c == to[i - 1] ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({row[i] + 1, row[i - 1] + 1, changed});
        }
    }
    return row.back();
}

/// Returns the most similar word; empty if none is similar enough.
std::string Nearest(std::string_view word, const std::vector<std::string>& words) {
    std::string nearest;
    std::size_t least = 3;  // a larger distance means another word
    for (const auto& candidate : words) {
        const auto distance = EditDistance(word, candidate);
        if (distance < std::min(least, candidate.size() - 1)) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

/// Returns the advice after a sentence about an unknown word.
std::string Advice(const std::string& nearest, const std::string& help) {
    return nearest.empty() ? "Run '" + help + "' for a list." : "Did you mean '" + nearest + "'?";
}

/// Returns a text broken into lines of at most `kTextWidth`.
std::string Wrapped(std::string_view text) {
    std::string wrapped;
    while (text.size() > kTextWidth) {
        const auto end = text.rfind(' ', kTextWidth);
        if (end == std::string_view::npos) break;
        wrapped.append(text.substr(0, end)).append("\n");
        text.remove_prefix(end + 1);
    }
    return wrapped.append(text);
}

std::string FooterOf(const CCommandText& text) {
    return Wrapped(text.details) + "\n\nExample:\n  " + std::string(text.example) + "\n\nExit status:\n" +
           std::string(text.statuses);
}

std::string Footer(const CCommands& commands) {
    std::string footer = "Examples:\n";
    for (const auto& command : commands)
        footer.append("  ").append(command->Text().example).append("\n");
    return footer +
           "\nRun 'vxfile COMMAND --help' for details and exit statuses. A wrong command line\n"
           "ends with 2, Ctrl-C with 130; neither leaves an incomplete file.\n"
           "Set NO_COLOR, or TERM=dumb, to turn colours off.";
}

/// Returns the command whose arguments were being parsed, or the program itself.
const CLI::App& CommandAtHand(const CLI::App& app) {
    const auto parsed = app.get_subcommands();
    return parsed.empty() ? app : *parsed.front();
}

/// Returns the names of a command's options.
std::vector<std::string> OptionsOf(const CLI::App& command) {
    std::vector<std::string> words;
    for (const CLI::Option* option : command.get_options()) {
        for (const auto& word : option->get_lnames())
            words.push_back("--" + word);
    }
    return words;
}

bool TakesLists(const CLI::App& command) {
    const auto options = command.get_options();
    return std::ranges::any_of(options, [](const CLI::Option* option) { return option->get_delimiter() != '\0'; });
}

/// Returns a check that accepts the decimal numbers of an integer type. Without it, the parser would read 010 as 8, and
/// clamp numbers out of range.
template <class Number>
CLI::Validator WholeNumber(double least, std::string_view wanted) {
    const auto judge = [=](std::string& text) {
        Number number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size() || static_cast<double>(number) < least)
            return std::string("'").append(text).append("' isn't ").append(wanted);
        text = std::to_string(number);
        return std::string();
    };
    return {judge, ""};
}

/// Returns a check that accepts the numbers in a range, which excludes nan.
CLI::Validator Within(double least, double most, std::string_view wanted) {
    const auto judge = [=](std::string& text) {
        double number = 0;
        if (CLI::detail::lexical_cast(text, number) && number >= least && number <= most) return std::string();
        return std::string("'").append(text).append("' isn't ").append(wanted);
    };
    return {judge, ""};
}

template <class Target>
CLI::Option* AddTo(CLI::App& app, const COption& option, const std::string& names, Target& target) {
    const std::string text(option.text);
    if constexpr (std::is_same_v<Target, bool>) {
        return app.add_flag(names, target, text);
    } else {
        CLI::Option* const added = app.add_option(names, target, text);
        if constexpr (std::is_same_v<Target, std::int64_t>) {
            added->transform(WholeNumber<std::int64_t>(option.least, option.wanted));
        } else if constexpr (std::is_same_v<Target, double>) {
            added->check(Within(option.least, option.most, option.wanted));
        } else if constexpr (std::is_same_v<Target, std::vector<std::int32_t>>) {
            added->transform(WholeNumber<std::int32_t>(option.least, option.wanted));
        }
        if constexpr (!std::is_same_v<Target, std::string> && std::is_class_v<Target>) {
            if (!option.IsPositional()) added->delimiter(',')->allow_extra_args(false);
        }
        return added->type_name(std::string(option.ValueName()));
    }
}

/// Describes one argument of a command to the parser.
void AddOption(CLI::App& app, const COption& option) {
    CLI::Option* const added =
        std::visit([&](auto* target) { return AddTo(app, option, std::string(option.names), *target); }, option.target);
    added->required(option.isRequired);
    for (const auto other : option.needs)
        added->needs(app.get_option(std::string(other)));
    for (const auto other : option.excludes)
        added->excludes(app.get_option(std::string(other)));
}

/// Describes the program, its commands and their arguments to the parser.
void Describe(CLI::App& app, const CCommands& commands) {
    app.name("vxfile");
    app.description(std::string(kProgramText));
    app.set_version_flag("--version", std::string("vxfile ") + VXFILE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // which would make options of names such as /runs/1.vxd
    const auto words = std::make_shared<CLI::Formatter>();
    words->label("SUBCOMMAND", "COMMAND");
    words->label("Positionals", "Arguments");
    words->label("REQUIRED", "(required)");
    app.formatter(words);
    app.set_help_flag(std::string(kHelpNames), std::string(kHelpText));
    app.footer(Footer(commands));
    for (const auto& command : commands) {
        const CCommandText& text = command->Text();
        auto* const part = app.add_subcommand(std::string(text.name), std::string(text.purpose));
        part->group("Commands");
        part->footer(FooterOf(text));
        for (const auto& option : command->Options())
            AddOption(*part, option);
    }
}

/// Throws `CFailure` if the word isn't a command, with the most similar one.
void RefuseUnknownCommand(const CCommands& commands, std::string_view word) {
    std::vector<std::string> names;
    for (const auto& command : commands)
        names.emplace_back(command->Text().name);
    if (std::ranges::find(names, word) != names.end()) return;
    if (word.empty()) throw CFailure("No command given. Run 'vxfile --help' for a list.");
    names.insert(names.end(), {"--help", "--version"});  // which some programs take as commands
    throw CFailure("Unknown command '" + std::string(word) + "'. " +
                   Advice(Nearest(Lowered(std::string(word)), names), "vxfile --help"));
}

/// Throws a `CFailure` with the fault in the arguments of a command and where to find help.
[[noreturn]] void RefuseCommandLine(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& command = CommandAtHand(app);
    const std::string help = (&command == &app ? "vxfile" : "vxfile " + command.get_name()) + " --help";
    const auto unknown = command.remaining();
    if (unknown.empty()) throw CFailure(std::string(error.what()) + ". Run '" + help + "' for usage.");
    const auto option = std::ranges::find_if(unknown, [](const auto& word) { return word.starts_with("-"); });
    if (option == unknown.end())
        throw CFailure("Unexpected argument '" + unknown.front() + "'" +
                       (TakesLists(command) ? " (separate several values of an option by commas, such as 1,2)" : "") +
                       ". Run '" + help + "' for usage.");
    throw CFailure("Unknown option '" + *option + "'. " + Advice(Nearest(*option, OptionsOf(command)), help));
}

}  // namespace

std::string_view COption::ValueName() const {
    if (IsPositional() || std::holds_alternative<bool*>(target)) return {};
    if (!value.empty()) return value;
    const bool isText =
        std::holds_alternative<std::string*>(target) || std::holds_alternative<std::vector<std::string>*>(target);
    return isText ? "NAME" : "NUMBER";
}

CCommand* ParseCommandLine(const CCommands& commands, int argc, const char* const* argv) {
    CLI::App app;
    Describe(app, commands);
    if (argc < 2 || argv[1][0] != '-') RefuseUnknownCommand(commands, argc < 2 ? "" : argv[1]);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {  // help or version
        std::ostringstream text;
        app.exit(asked, text, text);
        std::cout << text.str();
        return nullptr;
    } catch (const CLI::ParseError& error) {
        RefuseCommandLine(app, error);
    }
    const auto parsed = std::ranges::find_if(
        commands, [&](const auto& command) { return app.got_subcommand(std::string(command->Text().name)); });
    return parsed->get();
}

}  // namespace vxfile
