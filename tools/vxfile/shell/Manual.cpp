#include "tools/vxfile/shell/Manual.h"

#include <string>
#include <string_view>

namespace vxfile {

namespace {

/// Returns a text such that `man` takes none of it for a command of its own.
std::string Escaped(std::string_view text) {
    std::string escaped;
    bool atStart = true;
    for (const char c : text) {
        if (c == '\\' || c == '-') escaped += '\\';
        if (atStart && (c == '.' || c == '\'')) escaped += R"(\&)";
        escaped += c;
        atStart = c == '\n';
    }
    return escaped;
}

/// Returns how an argument is told, such as "-o, --output" or "FILE".
std::string NameOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true, false);
    std::string name;
    for (const auto& word : option.get_snames())
        name += (name.empty() ? "-" : ", -") + word;
    for (const auto& word : option.get_lnames())
        name += (name.empty() ? "--" : ", --") + word;
    return name;
}

/// Returns what an option takes, such as "SECONDS", in the words of `--help`; empty if it takes nothing.
std::string ValueOf(const CLI::App& app, const CLI::Option& option) {
    if (option.get_positional() || option.get_type_name().empty()) return "";
    return app.get_formatter()->get_label(option.get_type_name());
}

void WriteCommand(const CLI::App& app, const CCommandText& text, std::ostream& out) {
    out << ".SS " << text.name << "\n" << Escaped(text.purpose) << ".\n";
    if (!text.details.empty()) out << ".PP\n" << Escaped(text.details) << '\n';
    for (const CLI::Option* option : app.get_options()) {
        const std::string value = ValueOf(app, *option);
        out << ".TP\n.B " << Escaped(NameOf(*option)) << (value.empty() ? "" : R"(\fR \fI)") << Escaped(value) << '\n'
            << Escaped(option->get_description()) << '\n';
    }
    out << ".PP\nExample:\n.PP\n.nf\n"
        << Escaped(text.example) << "\n.fi\n.PP\nExit status:\n.PP\n.nf\n"
        << Escaped(text.statuses) << "\n.fi\n";
}

/// Returns the words that can follow a command, with blanks between them.
std::string OptionWords(const CLI::App& app) {
    std::string words;
    for (const CLI::Option* option : app.get_options()) {
        for (const auto& word : option->get_snames())
            words += " -" + word;
        for (const auto& word : option->get_lnames())
            words += " --" + word;
    }
    return words.empty() ? words : words.substr(1);
}

}  // namespace

void WriteManual(const CLI::App& app, const CCommands& commands, std::ostream& out) {
    out << R"(.TH VXFILE 1 "" "vxfile )" << VXFILE_VERSION << R"(" "User Commands")" << '\n'
        << ".SH NAME\nvxfile \\- inspect, check, convert and recover the files of a cell screening instrument\n"
        << ".SH SYNOPSIS\n.B vxfile\n.I COMMAND\n[\\fIOPTIONS\\fR] \\fIFILE\\fR...\n"
        << ".SH DESCRIPTION\n"
        << Escaped(app.get_description()) << '\n'
        << ".SH COMMANDS\n";
    for (const auto& command : commands) {
        const CCommandText& text = command->Text();
        WriteCommand(*app.get_subcommand(std::string(text.name)), text, out);
    }
    out << ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\nIf it is set and not empty, nothing is coloured.\n"
        << ".TP\n.B TERM\nOn a terminal that is \"dumb\" nothing is coloured, and no line is written twice.\n"
        << ".SH EXIT STATUS\nEach command lists its own above. A wrong command line ends with 2, Ctrl\\-C with 130;\n"
        << "so do SIGTERM and SIGHUP.\n";
}

void WriteCompletion(const CLI::App& app, const CCommands& commands, std::ostream& out) {
    std::string names;
    for (const auto& command : commands)
        names += ' ' + std::string(command->Text().name);
    out << "_vxfile() {\n    local word=${COMP_WORDS[COMP_CWORD]} words=\n    case ${COMP_WORDS[1]} in\n";
    for (const auto& command : commands) {
        const std::string name(command->Text().name);
        out << "        " << name << ") words='" << OptionWords(*app.get_subcommand(name)) << "' ;;\n";
    }
    out << "    esac\n    ((COMP_CWORD == 1)) && words='" << names.substr(1) << " --help --version'\n"
        << "    if ((COMP_CWORD == 1)) || [[ $word == -* ]]; then\n"
        << "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n    else\n"
        << "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n    fi\n}\n"
        << "complete -o filenames -F _vxfile vxfile\n";
}

}  // namespace vxfile
