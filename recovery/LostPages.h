#pragma once

#include <cstdint>
#include <functional>

#include "recovery/Input.h"

namespace vxfileio::recovery {

/// Calls `act(from, to)` for each run of zeros among the samples at [begin, end) that looks like pages which a power
/// cut kept from the disk.
///
/// The system writes pages of 4096 bytes, in any order. A page that never reached the disk is zeros, all of it, also
/// what follows the samples. So a run begins where a page does, and consists of whole pages; it ends with one, with the
/// samples, or with the input. A signal that stays at 0 seldom does so from the first sample of a page on: there is no
/// run if the sample before it is 0, too. A run may begin before `begin`, in the header, which is never zeros by
/// itself.
///
/// Reads all samples once, in blocks. Throws `CReadFailure`.
void ForLostPages(CWindow& window, std::int64_t begin, std::int64_t end,
                  const std::function<void(std::int64_t from, std::int64_t to)>& act);

}  // namespace vxfileio::recovery
