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

/// The member of a command in which an argument is stored. A bool is set if its option is given. A list has several
/// values: separated by commas for an option, all remaining arguments for one without a name.
using CArgument =
    std::variant<bool*, std::string*, std::vector<std::string>*, std::int64_t*, std::vector<std::int32_t>*, double*>;

/// One argument of a command: what the parser needs, and its description in help, manual and completion.
struct COption {
    std::string_view names;  ///< "FILE" for an argument without a name, otherwise such as "-o,--output".
    CArgument target;        ///< Where the value is stored. Its initial value is the default.
    std::string_view text;   ///< Its description in help: one line, without a full stop.
    bool isRequired = false;
    std::string_view value = {};   ///< The name of the value in help; by default NAME or NUMBER.
    std::string_view wanted = {};  ///< For numbers: the description in an error, such as "a number of seconds above 0".
    double least = std::numeric_limits<double>::lowest();  ///< The least number.
    double most = std::numeric_limits<double>::max();      ///< The greatest double; an integer has that of its type.
    std::vector<std::string_view> needs = {};              ///< Options that must be given with it, listed before it.
    std::vector<std::string_view> excludes = {};           ///< Options that can't be given with it, listed before it.

    /// Returns whether it is an argument without a name.
    bool IsPositional() const { return !names.starts_with('-'); }
    /// Returns the name of the value in help, such as "SECONDS"; empty if there is none or the option's name says it.
    std::string_view ValueName() const;
};

/// Returns the options of two lists, one after the other.
inline std::vector<COption> Together(std::vector<COption> first, const std::vector<COption>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// The description of a command in help, manual and completion.
struct CCommandText {
    std::string_view name;      ///< The word on the command line.
    std::string_view purpose;   ///< One line, without a full stop.
    std::string_view details;   ///< A few sentences: its input, its output, what it never does.
    std::string_view example;   ///< A command line, as a user would type it.
    std::string_view statuses;  ///< The meanings of 0, 1 and 2, one per line.
};

/// One command of the program.
class CCommand {
 public:
    CCommand() = default;
    virtual ~CCommand() = default;
    CCommand(const CCommand&) = delete;
    CCommand& operator=(const CCommand&) = delete;

    /// Returns the description. The texts are valid as long as the program runs.
    virtual const CCommandText& Text() const = 0;

    /// Returns the arguments, in the order of the help. They point to members of this object.
    virtual std::vector<COption> Options() = 0;

    /// Runs the command with the parsed arguments. Returns the exit status. Throws `CFailure` or `CExcVXReader` on
    /// failure, and `CInterruption` after Ctrl-C; the caller converts them into a message and a status.
    virtual int Run() = 0;
};

using CCommands = std::vector<std::unique_ptr<CCommand>>;

/// Creates all commands, in the order of the help.
[[nodiscard]] CCommands MakeCommands();

}  // namespace vxfile
