#pragma once

#include <cstdint>
#include <string>

namespace vxfileio::base {

/// An exception with a number from a fixed table of texts.
///
/// Internal: callers can only catch it with a handler for all exceptions. Thrown by value.
class CVXExceptions {
 public:
    std::int32_t code = 0;  ///< Index into the table of texts.
    std::string message;    ///< The text for the user.
};

/// A value that can't be converted, such as a dose beyond the largest unit.
class CExcConversion : public CVXExceptions {
 public:
    /// The only code that the library throws: a dose too large for the largest unit.
    static constexpr std::int32_t kDoseOutOfRange = 1;

    /// Takes the text that belongs to `conversionCode`; a code outside 0 to 10 gets the text for unknown errors and is
    /// kept all the same.
    explicit CExcConversion(std::int32_t conversionCode);
};

}  // namespace vxfileio::base
