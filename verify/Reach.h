#pragma once

#include <cstdint>
#include <functional>

namespace vxfile {

/// Receives the progress of a check, often: how much of the work is done, of how much in all. May throw, which ends the
/// check.
using CReach = std::function<void(std::int64_t done, std::int64_t total)>;

/// For callers that don't ask for progress.
inline void IgnoreReach(std::int64_t /*done*/, std::int64_t /*total*/) {}

}  // namespace vxfile
