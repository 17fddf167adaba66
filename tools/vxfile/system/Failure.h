#pragma once

#include <stdexcept>
#include <string>

namespace vxfile {

/// Why a command can't go on: one sentence for the user that names the cause and what to do about it.
class CFailure : public std::runtime_error {
 public:
    explicit CFailure(const std::string& sentence) : std::runtime_error(sentence) {}
};

}  // namespace vxfile
