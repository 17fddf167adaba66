#include "tools/vxfile/recover/WholeCells.h"

#include <algorithm>

#include "tools/vxfile/raw/CellFault.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

/// Tells whether a number that is written as it should be can be what it says: no position lies below -1, and no header
/// has room for more channels.
bool IsInRange(const auto& cell, std::string_view bytes) {
    if (cell.key.starts_with("FPos")) return vxfileio::ParseInt64(CellValue(bytes)) >= kUnset;
    if (!cell.key.starts_with("NumberOf")) return true;
    const std::int64_t count = vxfileio::ParseInt64(CellValue(bytes));
    return count >= 0 && count <= static_cast<std::int64_t>(kMostChannels);
}

CDamagedCells DamagedCells(const auto& cells, std::int32_t version, std::string_view bytes) {
    CDamagedCells damaged;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        const auto& cell = cells[row];
        if (!HasCell(cell, version)) continue;
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        const auto fault = cellBytes.size() < cell.width ? CCellFault{ECellFault::NoLineEnd} : FaultOf(cell, cellBytes);
        damaged[row] = fault ? fault->kind != ECellFault::Separator : !IsInRange(cell, cellBytes);
        bytes.remove_prefix(cellBytes.size());
    }
    return damaged;
}

}  // namespace

CDamagedCells DamagedFileCells(std::string_view bytes) { return DamagedCells(kFileCells, kNewestVersion, bytes); }

CDamagedCells DamagedRecordingCells(std::string_view bytes, std::int32_t version) {
    return DamagedCells(kRecordingCells, version, bytes);
}

CDamagedCells DamagedSegmentCells(std::string_view bytes) { return DamagedCells(kSegmentCells, kNewestVersion, bytes); }

}  // namespace vxfile
