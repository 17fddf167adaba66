#include "tools/vxfile/shell/Program.h"

#include <iostream>
#include <string>
#include <string_view>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/CommandLine.h"
#include "tools/vxfile/shell/Manual.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "tools/vxfile/system/Output.h"

namespace vxfile {

namespace {

/// Answers the words that only the build uses. Returns false for other words.
bool PrintedForBuild(const CCommands& commands, std::string_view word) {
    if (word == "--manual") WriteManual(commands, std::cout);
    if (word == "--bash-completion") WriteCompletion(commands, std::cout);
    return word == "--manual" || word == "--bash-completion";
}

int ParseAndRun(int argc, const char* const* argv) {
    const CCommands commands = MakeCommands();
    if (PrintedForBuild(commands, argc > 1 ? argv[1] : "")) return kSound;
    CCommand* const command = ParseCommandLine(commands, argc, argv);
    if (command == nullptr) return kSound;
    CatchInterrupts();
    return command->Run();
}

/// Runs the command. Fails if what it printed could not be written.
int RunWhole(int argc, const char* const* argv) {
    const int status = ParseAndRun(argc, argv);
    FinishPrinting();
    return status;
}

}  // namespace

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
