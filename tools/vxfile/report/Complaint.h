#pragma once

#include <functional>
#include <string>

namespace vxfile {

/// Runs `work`. Returns the sentence of the failure that ended it, be it the program's own, the library's, or a lack of
/// memory; empty if it succeeded. `CInterruption` passes through.
[[nodiscard]] std::string FailureOf(const std::function<void()>& work);

/// Flushes standard output, then prints the sentence to standard error. File names may contain control characters;
/// these are escaped so that they don't reach the terminal.
void Complain(const std::string& sentence);

}  // namespace vxfile
