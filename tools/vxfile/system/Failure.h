#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace vxfile {

/// Why a command can't go on: one sentence for the user that says what was the matter and what to do.
class CFailure : public std::runtime_error {
 public:
    explicit CFailure(const std::string& sentence) : std::runtime_error(sentence) {}
};

/// Does some work. Returns the sentence of the failure that ended it, be it the program's own or the library's, or that
/// memory ran short; empty if there was none. An interruption passes.
std::string FailureOf(const std::function<void()>& work);

/// Tells a sentence on standard error, behind what was printed so far. Names of files may have control characters,
/// which no terminal shall see.
void Complain(const std::string& sentence);

}  // namespace vxfile
