#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tools/vxfile/system/ExitStatus.h"

namespace vxfile {

/// The member of a command that an argument is stored in. A bool is set by naming its option. A list takes several
/// values: an option separates them by commas, an argument without a name takes all that follow.
using CArgument =
    std::variant<bool*, std::string*, std::vector<std::string>*, std::int64_t*, std::vector<std::int32_t>*, double*>;

/// One argument of a command, as help, manual and completion describe it and the parser reads it.
struct COption {
    std::string_view names;  ///< "FILE" for an argument without a name, else such as "-o,--output".
    CArgument target;        ///< Where the value goes. Its value before is the default.
    std::string_view text;   ///< What help says about it: one line, without a full stop.
    bool isRequired = false;
    std::string_view value = {};   ///< What help calls the value; by default NAME or NUMBER.
    std::string_view wanted = {};  ///< For numbers: what a refusal asks for, such as "a number of seconds above 0".
    double least = std::numeric_limits<double>::lowest();  ///< The range of a double; a whole number has its type's.
    double most = std::numeric_limits<double>::max();
    std::vector<std::string_view> needs = {};     ///< Options that must be given with it, listed before it.
    std::vector<std::string_view> excludes = {};  ///< Options that can't be given with it, listed before it.

    /// True for an argument without a name.
    bool IsPositional() const { return !names.starts_with('-'); }
    /// Returns what help calls the value, such as "SECONDS"; empty if there is none or the name says it.
    std::string_view ValueName() const;
};

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

    /// Returns its arguments, in the order of the help. They point to members of this object.
    virtual std::vector<COption> Options() = 0;

    /// Does the work with the arguments that were parsed. Returns the exit status. Throws `CFailure` or `CExcVXReader`
    /// if it can't, and `CInterruption` if Ctrl-C was hit; the caller makes a sentence and a status of them.
    virtual int Run() = 0;
};

using CCommands = std::vector<std::unique_ptr<CCommand>>;

/// Makes all commands, in the order in which help lists them.
[[nodiscard]] CCommands MakeCommands();

}  // namespace vxfile
