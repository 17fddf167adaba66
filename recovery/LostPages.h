#pragma once

#include <cstdint>
#include <functional>

#include "recovery/Input.h"

namespace vxfileio::recovery {

/// Calls `act(from, to)` for each run of zeros among the samples at [begin, end) that looks like pages lost in a power
/// cut.
///
/// The system writes pages of 4096 bytes, in any order. A page that never reached the disk is all zeros, including what
/// follows the samples. So a run begins at a page boundary and consists of whole pages; it ends at one, with the
/// samples, or with the input. A signal that stays at 0 seldom starts to do so at a page boundary: if the sample before
/// is 0, too, there is no run. A run may begin before `begin`, in the header, which is never all zeros otherwise.
///
/// Reads all samples once, in blocks. Throws `CReadFailure`.
void ForLostPages(CWindow& window, std::int64_t begin, std::int64_t end,
                  const std::function<void(std::int64_t from, std::int64_t to)>& act);

}  // namespace vxfileio::recovery
