#include "tools/vxfile/Program.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <numeric>
#include <string>
#include <utility>

#include "tools/vxfile/Command.h"
#include "tools/vxfile/Manual.h"
#include "tools/vxfile/commands/DiffCommand.h"
#include "tools/vxfile/commands/ExportCommand.h"
#include "tools/vxfile/commands/InfoCommand.h"
#include "tools/vxfile/commands/RecoverCommand.h"
#include "tools/vxfile/commands/SamplesCommand.h"
#include "tools/vxfile/commands/VerifyCommand.h"
#include "tools/vxfile/commands/WatchCommand.h"
#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/Interrupt.h"
#include "tools/vxfile/io/Output.h"
#include "tools/vxfile/io/Text.h"
#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/frame/VXExceptions.h"

namespace vxfile {

namespace {

/// Returns how many characters have to be put, taken or changed to make one word of the other.
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

/// A word that is no command gets the one that was most likely meant.
void RefuseUnknownCommand(const CCommands& commands, std::string_view word) {
    std::string_view nearest;
    std::size_t least = 3;  // what is further away was meant otherwise
    for (const auto& command : commands) {
        const auto name = command->Text().name;
        const auto distance = EditDistance(word, name);
        if (distance == 0) return;
        if (distance < std::min(least, name.size() - 1)) {
            least = distance;
            nearest = name;
        }
    }
    const std::string advice =
        nearest.empty() ? "vxfile --help lists them." : "did you mean '" + std::string(nearest) + "'?";
    throw CFailure("'" + std::string(word) + "' is no command; " + advice);
}

void Describe(CLI::App& app, const CCommands& commands) {
    app.set_version_flag("--version", std::string("vxfile ") + VXFILE_VERSION, "Print the version and end");
    app.require_subcommand(1);
    app.footer("vxfile COMMAND --help tells more about a command, with an example.");
    for (const auto& command : commands) {
        const CCommandText& text = command->Text();
        auto* const part = app.add_subcommand(std::string(text.name), std::string(text.purpose));
        part->footer(std::string(text.details) + "\n\nExample:\n  " + std::string(text.example) + "\n\nExit status:\n" +
                     std::string(text.statuses));
        command->AddOptions(*part);
    }
}

/// What the build asks for is nothing that help lists. Returns false if it is something else.
bool PrintedForBuild(const CLI::App& app, const CCommands& commands, std::string_view word) {
    if (word == "--manual") WriteManual(app, commands, std::cout);
    if (word == "--bash-completion") WriteCompletion(app, commands, std::cout);
    return word == "--manual" || word == "--bash-completion";
}

int RunParsed(const CLI::App& app, const CCommands& commands) {
    for (const auto& command : commands) {
        if (app.got_subcommand(std::string(command->Text().name))) return command->Run();
    }
    return kTrouble;
}

int ParseAndRun(int argc, const char* const* argv) {
    const CCommands commands = MakeCommands();
    CLI::App app("Looks into the files of a cell screening instrument, checks and saves them.", "vxfile");
    Describe(app, commands);
    if (PrintedForBuild(app, commands, argc > 1 ? argv[1] : "")) return kSound;
    if (argc > 1 && argv[1][0] != '-') RefuseUnknownCommand(commands, argv[1]);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSound : kTrouble;
    }
    CatchInterrupts();
    return RunParsed(app, commands);
}

/// Runs what is asked for. What it printed counts only if it could be written.
int RunWhole(int argc, const char* const* argv) {
    const int status = ParseAndRun(argc, argv);
    FinishPrinting();
    return status;
}

int Tell(const std::string& sentence) {
    std::cout.flush();
    std::cerr << "vxfile: " << sentence << '\n';
    return kTrouble;
}

}  // namespace

CCommands MakeCommands() {
    CCommands commands;
    commands.push_back(MakeInfoCommand());
    commands.push_back(MakeVerifyCommand());
    commands.push_back(MakeRecoverCommand());
    commands.push_back(MakeSamplesCommand());
    commands.push_back(MakeExportCommand());
    commands.push_back(MakeWatchCommand());
    commands.push_back(MakeDiffCommand());
    return commands;
}

int RunProgram(int argc, const char* const* argv) noexcept try {
    return RunWhole(argc, argv);
} catch (const CInterruption&) {
    Tell("interrupted; no half file is left.");
    return kInterrupted;
} catch (const CExcVXReader& failure) {
    return Tell(failure.GetMsg());
} catch (const CVXExceptions& failure) {
    return Tell(Readable(failure.message));
} catch (const std::exception& failure) {
    return Tell(failure.what());
}

}  // namespace vxfile
