#pragma once

#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/helpers/File.h"

namespace YExcel {

/// Writes a workbook, which is a compound file with the one stream, to an empty file that is open for writing. Returns
/// false if the stream is more than a compound file holds, or the system refuses something.
[[nodiscard]] bool WriteWorkbook(const WorkbookStream& stream, vxfileio::helpers::CFile& file);

}  // namespace YExcel
