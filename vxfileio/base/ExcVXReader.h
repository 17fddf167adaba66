#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/base/Api.h"

/// The failure that callers catch: a number and a text for the user.
///
/// Thrown by value. It derives from nothing, so it is caught by its own name. Every failure that the library itself
/// reports this way has the code -1; the text says what went wrong. A copy is independent of its original.
class VXFILEIO_API CExcVXReader {
 public:
    /// Makes a failure with the given code and text.
    CExcVXReader(std::int32_t code, std::string message);

    /// Makes a failure with the code -1 and the given text.
    explicit CExcVXReader(std::string message);

    /// Returns the code: -1 unless the thrower gave one.
    std::int32_t GetCode() const;

    /// Returns a copy of the text.
    std::string GetMsg() const;

 private:
    std::int32_t m_code;
    std::string m_message;
};
