#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string_view>
#include <vector>

#include "tools/vxfile/system/ExitStatus.h"

namespace vxfile {

/// What help, manual and completion say about a command.
struct CCommandText {
    std::string_view name;      ///< The word on the command line.
    std::string_view purpose;   ///< One line, without a full stop.
    std::string_view details;   ///< A few sentences: what it takes, what it gives, what it never does.
    std::string_view example;   ///< One command line, as somebody would type it.
    std::string_view statuses;  ///< What 0, 1 and 2 mean here, a line each.
};

/// One command of the program.
class CCommand {
 public:
    CCommand() = default;
    virtual ~CCommand() = default;
    CCommand(const CCommand&) = delete;
    CCommand& operator=(const CCommand&) = delete;

    /// Returns what it is and does. The texts live as long as the program.
    virtual const CCommandText& Text() const = 0;

    /// Tells the parser its arguments, which go into members of this object.
    virtual void AddOptions(CLI::App& app) = 0;

    /// Does the work with the arguments that were parsed. Returns the exit status. Throws `CFailure` or `CExcVXReader`
    /// if it can't, and `CInterruption` if Ctrl-C was hit; the caller makes a sentence and a status of them.
    virtual int Run() = 0;
};

using CCommands = std::vector<std::unique_ptr<CCommand>>;

/// Makes all commands, in the order in which help lists them.
[[nodiscard]] CCommands MakeCommands();

}  // namespace vxfile
