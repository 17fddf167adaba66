#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/report/Findings.h"

namespace vxfile {

/// Judges the table of shared strings that begins at the position, with the CONTINUE records behind it: it is read, put
/// together anew by the library's own rules, and compared. Returns where it ends, and puts the number of its texts
/// into `count` and of the cells that it claims into `uses`.
std::size_t JudgeSharedStrings(std::span<const std::byte> stream, std::size_t position, std::uint32_t& count,
                               std::uint32_t& uses, CFindings& findings);

/// Returns the shared strings of a stream as far as they are whole, characters as UTF-8.
std::vector<std::string> SharedTextsOf(std::span<const std::byte> stream);

}  // namespace vxfile
