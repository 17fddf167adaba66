#pragma once

#include <cstdint>
#include <string>

namespace vxfileio::helpers {

/// Returns the current time as a file time: units of 100 ns since 1601-01-01, UTC.
std::uint64_t GetCurrentFileTime();

/// Returns a file time as 19 characters of UTC, such as "2024-01-31 23:59:59". Times beyond the signed 64-bit range,
/// far in the year 30828, are taken as its end.
std::string FileTimeToText(std::uint64_t fileTime);

}  // namespace vxfileio::helpers
