#pragma once

#include <functional>
#include <string>

namespace vxfile {

/// Runs `work`. Returns the message of the failure that ended it: the program's, the library's, or a lack of memory;
/// empty if it succeeded. Doesn't catch `CInterruption`.
[[nodiscard]] std::string FailureOf(const std::function<void()>& work);

/// Prints the sentence to standard error, after all that was printed before it. File names may contain control
/// characters; these are escaped so that they don't reach the terminal.
void Complain(const std::string& sentence);

}  // namespace vxfile
