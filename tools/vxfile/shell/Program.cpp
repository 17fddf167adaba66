#include "tools/vxfile/shell/Program.h"

#include <iostream>
#include <sstream>
#include <string>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/CommandLine.h"
#include "tools/vxfile/shell/Manual.h"
#include "tools/vxfile/shell/commands/Commands.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "tools/vxfile/system/Output.h"

namespace vxfile {

namespace {

/// Answers the words that only the build uses. Returns false for other words.
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
    CLI::App app;
    Describe(app, commands);
    if (PrintedForBuild(app, commands, argc > 1 ? argv[1] : "")) return kSound;
    if (argc < 2 || argv[1][0] != '-') RefuseUnknownCommand(commands, argc < 2 ? "" : argv[1]);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {  // help or version
        std::ostringstream text;
        const int status = app.exit(asked, text, text);
        std::cout << text.str();
        return status;
    } catch (const CLI::ParseError& error) {
        RefuseCommandLine(app, error);
    }
    CatchInterrupts();
    return RunParsed(app, commands);
}

/// Runs the command. Fails if what it printed could not be written.
int RunWhole(int argc, const char* const* argv) {
    const int status = ParseAndRun(argc, argv);
    FinishPrinting();
    return status;
}

}  // namespace

CCommands MakeCommands() {
    CCommands commands;
    for (auto* const make : {MakeInfoCommand, MakeVerifyCommand, MakeRecoverCommand, MakeSamplesCommand,
                             MakeExportCommand, MakeWatchCommand, MakeDiffCommand})
        commands.push_back(make());
    return commands;
}

int RunProgram(int argc, const char* const* argv) noexcept try {
    KeepMemoryReserve();
    int status = kTrouble;
    const std::string failure = FailureOf([&] { status = RunWhole(argc, argv); });
    if (failure.empty()) return status;
    Complain(failure);
    return kTrouble;
} catch (const CInterruption&) {
    Complain("Interrupted; no incomplete file is left.");
    return kInterrupted;
}

}  // namespace vxfile
