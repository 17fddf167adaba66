#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string_view>
#include <vector>

namespace vxfile {

/// @name Exit status
/// What the program says to a script. A command may use them in a sense of its own, which its text tells.
/// @{
inline constexpr int kSound = 0;          ///< All is well.
inline constexpr int kFindings = 1;       ///< Done, and there is something to look at.
inline constexpr int kTrouble = 2;        ///< Not usable, or not done. A wrong command line is trouble, too.
inline constexpr int kInterrupted = 130;  ///< Ended by Ctrl-C, with nothing half done left behind.
/// @}

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

/// Makes all commands, in the order in which help lists them.
std::vector<std::unique_ptr<CCommand>> MakeCommands();

}  // namespace vxfile
