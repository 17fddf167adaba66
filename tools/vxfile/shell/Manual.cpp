#include "tools/vxfile/shell/Manual.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "tools/vxfile/shell/CommandLine.h"

namespace vxfile {

namespace {

/// Returns a text escaped so that `man` finds no commands in it.
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

/// Returns names with a blank after each comma, such as "-o, --output".
std::string Spaced(std::string_view names) {
    std::string spaced;
    for (const char c : names)
        spaced.append(1, c).append(c == ',' ? " " : "");
    return spaced;
}

void WriteOption(std::string_view names, std::string_view value, std::string_view text, std::ostream& out) {
    out << ".TP\n.B " << Escaped(Spaced(names)) << (value.empty() ? "" : R"(\fR \fI)") << Escaped(value) << '\n'
        << Escaped(text) << '\n';
}

void WriteCommand(CCommand& command, std::ostream& out) {
    const CCommandText& text = command.Text();
    out << ".SS " << text.name << "\n" << Escaped(text.purpose) << ".\n";
    if (!text.details.empty()) out << ".PP\n" << Escaped(text.details) << '\n';
    WriteOption(kHelpNames, "", kHelpText, out);
    for (const auto& option : command.Options())
        WriteOption(option.names, option.ValueName(), option.text, out);
    out << ".PP\nExample:\n.PP\n.nf\n"
        << Escaped(text.example) << "\n.fi\n.PP\nExit status:\n.PP\n.nf\n"
        << Escaped(text.statuses) << "\n.fi\n";
}

/// Returns the words that can follow a command, separated by blanks.
std::string OptionWords(CCommand& command) {
    std::string words(kHelpNames);
    for (const auto& option : command.Options()) {
        if (!option.IsPositional()) words.append(" ").append(option.names);
    }
    std::ranges::replace(words, ',', ' ');
    return words;
}

}  // namespace

void WriteManual(const CCommands& commands, std::ostream& out) {
    out << R"(.TH VXFILE 1 "" "vxfile )" << VXFILE_VERSION << R"(" "User Commands")" << '\n'
        << ".SH NAME\nvxfile \\- inspect, check, convert and recover the files of a cell screening instrument\n"
        << ".SH SYNOPSIS\n.B vxfile\n.I COMMAND\n[\\fIOPTIONS\\fR] \\fIFILE\\fR...\n"
        << ".SH DESCRIPTION\n"
        << Escaped(kProgramText) << '\n'
        << ".SH COMMANDS\n";
    for (const auto& command : commands)
        WriteCommand(*command, out);
    out << ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\nIf it is set and not empty, nothing is coloured.\n"
        << ".TP\n.B TERM\nOn a terminal that is \"dumb\" nothing is coloured, and no line is written twice.\n"
        << ".SH EXIT STATUS\nEach command lists its own above. A wrong command line ends with 2, Ctrl\\-C with 130;\n"
        << "so do SIGTERM and SIGHUP.\n";
}

void WriteCompletion(const CCommands& commands, std::ostream& out) {
    std::string names;
    for (const auto& command : commands)
        names += ' ' + std::string(command->Text().name);
    out << "_vxfile() {\n    local word=${COMP_WORDS[COMP_CWORD]} words=\n    case ${COMP_WORDS[1]} in\n";
    for (const auto& command : commands) {
        const std::string name(command->Text().name);
        out << "        " << name << ") words='" << OptionWords(*command) << "' ;;\n";
    }
    out << "    esac\n    ((COMP_CWORD == 1)) && words='" << names.substr(1) << " --help --version'\n"
        << "    if ((COMP_CWORD == 1)) || [[ $word == -* ]]; then\n"
        << "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n    else\n"
        << "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n    fi\n}\n"
        << "complete -o filenames -F _vxfile vxfile\n";
}

}  // namespace vxfile
