#pragma once

#include <stdexcept>
#include <string>

/// Reports that something read differs from what was written. The text says what and where.
class CDifference : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Throws `CDifference` unless `isAsWritten`.
inline void Expect(bool isAsWritten, const std::string& what) {
    if (!isAsWritten) throw CDifference(what + " differs from what was written");
}
