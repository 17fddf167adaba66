#pragma once

#include <stdexcept>
#include <string>

namespace vxfile {

/// The reason why a command fails: one sentence for the user with the cause and what to do about it.
class CFailure : public std::runtime_error {
 public:
    explicit CFailure(const std::string& sentence) : std::runtime_error(sentence) {}
};

}  // namespace vxfile
