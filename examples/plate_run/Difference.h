#pragma once

#include <stdexcept>
#include <string>

/// Something that was read isn't what was written. The text tells what and where.
class CDifference : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws `CDifference` unless what was read is as it was written.
inline void Expect(bool isAsWritten, const std::string& what) {
    if (!isAsWritten) throw CDifference(what + " isn't what was written");
}
