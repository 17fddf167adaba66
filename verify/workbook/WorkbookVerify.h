#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "verify/Findings.h"
#include "verify/Reach.h"

namespace vxfile {

/// Compares a workbook with what the library writes around its cells: header, FAT, DIFAT, directory and mini stream of
/// the compound file, and the records of its stream. Cells may have any value. Throws `CFailure` if the file can't be
/// opened.
CFindings VerifyWorkbook(const std::string& path, const CReach& reach = IgnoreReach);

/// Judges the records of the stream: order, sizes, fixed fields, stored positions, and shared strings.
void JudgeRecords(std::span<const std::byte> stream, CFindings& findings, const CReach& reach);

}  // namespace vxfile
