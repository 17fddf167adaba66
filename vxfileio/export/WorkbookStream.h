#pragma once

#include <memory>
#include <vector>

#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/biff/RecordStream.h"

namespace YExcel {

/// The sheets of a workbook, in their order.
using Sheets = std::vector<std::unique_ptr<Sheet>>;

/// Returns the stream that stands for a workbook of these sheets, which stay as they are.
RecordStream BuildWorkbookStream(const Sheets& sheets);

}  // namespace YExcel
