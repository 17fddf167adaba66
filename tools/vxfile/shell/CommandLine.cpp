#include "tools/vxfile/shell/CommandLine.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/system/Failure.h"

namespace vxfile {

namespace {

/// The width of help texts that aren't lists.
constexpr std::size_t kTextWidth = 80;

/// Returns how many characters must be inserted, removed or changed to turn one word into the other.
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

/// Returns the word that was most likely meant; empty if all are too far away.
std::string Nearest(std::string_view word, const std::vector<std::string>& words) {
    std::string nearest;
    std::size_t least = 3;  // what is further away was meant otherwise
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

/// Returns the command whose arguments were being parsed; the program itself if there is none.
const CLI::App& CommandAtHand(const CLI::App& app) {
    const auto parsed = app.get_subcommands();
    return parsed.empty() ? app : *parsed.front();
}

/// Returns what a command's options are called.
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

}  // namespace

void Describe(CLI::App& app, const CCommands& commands) {
    app.name("vxfile");
    app.description("Inspects, checks, converts and recovers the files of a cell screening instrument.");
    app.set_version_flag("--version", std::string("vxfile ") + VXFILE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // which would make options of names such as /runs/1.vxd
    const auto words = std::make_shared<CLI::Formatter>();
    words->label("SUBCOMMAND", "COMMAND");
    words->label("Positionals", "Arguments");
    words->label("REQUIRED", "(required)");
    words->label("TEXT", "NAME");
    words->label("INT", "NUMBER");
    app.formatter(words);
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.footer(Footer(commands));
    for (const auto& command : commands) {
        const CCommandText& text = command->Text();
        auto* const part = app.add_subcommand(std::string(text.name), std::string(text.purpose));
        part->group("Commands");
        part->footer(FooterOf(text));
        command->AddOptions(*part);
        for (CLI::Option* option : part->get_options()) {
            if (option->get_positional()) option->type_name("");  // its name says enough
        }
    }
}

CLI::Validator Wanted(const CLI::Validator& check, const std::string& wanted) {
    const auto judge = [check, wanted](std::string& text) {
        const std::string given = text;
        return check(text).empty() ? "" : "'" + given + "' isn't " + wanted;
    };
    return {judge, ""};
}

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

void RefuseCommandLine(const CLI::App& app, const CLI::ParseError& error) {
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

}  // namespace vxfile
