#pragma once

#include <stdexcept>
#include <string>

namespace vxfile {

/// Why a command can't go on: one sentence for the user that says what was the matter and what to do.
class CFailure : public std::runtime_error {
 public:
    explicit CFailure(const std::string& sentence) : std::runtime_error(sentence) {}
};

}  // namespace vxfile
