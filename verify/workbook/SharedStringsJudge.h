#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "verify/Findings.h"

namespace vxfile {

/// Judges the table of shared strings at the position, with its CONTINUE records: reads it, rebuilds it by the
/// library's rules, and compares. Returns the offset after it. Stores the number of its texts in `count`, and the
/// number of cells that it claims in `uses`.
std::size_t JudgeSharedStrings(std::span<const std::byte> stream, std::size_t position, std::uint32_t& count,
                               std::uint32_t& uses, CFindings& findings);

/// Returns the shared strings of a stream up to the first incomplete one, as UTF-8.
std::vector<std::string> SharedTextsOf(std::span<const std::byte> stream);

}  // namespace vxfile
