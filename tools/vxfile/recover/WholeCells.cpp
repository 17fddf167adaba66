#include "tools/vxfile/recover/WholeCells.h"

#include <algorithm>
#include <string>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/CellFault.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

/// Tells whether a number that is written as it should be can be what it says: no position lies below -1, there are no
/// trailers, and no header has room for more channels.
bool IsInRange(const auto& cell, std::string_view bytes) {
    if (cell.key == "FPosRecordingTrailer") return vxfileio::helpers::ParseInt64(CellValue(bytes)) == kUnset;
    if (cell.key.starts_with("FPos")) return vxfileio::helpers::ParseInt64(CellValue(bytes)) >= kUnset;
    if (!cell.key.starts_with("NumberOf")) return true;
    const std::int64_t count = vxfileio::helpers::ParseInt64(CellValue(bytes));
    return count >= 0 && count <= static_cast<std::int64_t>(kMostChannels);
}

bool IsOdd(const auto& cell, std::string_view bytes) {
    const auto fault = FaultOf(cell, bytes);
    return fault && fault->kind == ECellFault::Separator;
}

bool IsDamaged(const auto& cell, std::string_view bytes) {
    if (bytes.size() < cell.width) return true;
    const auto fault = FaultOf(cell, bytes);
    return fault ? fault->kind != ECellFault::Separator : !IsInRange(cell, bytes);
}

/// Tells whether the text of a damaged cell would be whole in a cell that isn't. A single NUL behind it doesn't end it
/// for sure: that may have been a character, and what follows the rest of the text. A line end within it may be that of
/// the cell, with another one behind.
bool IsLegible(const auto& cell, std::string_view bytes) {
    const std::string_view text = CellText(bytes);
    if (bytes.size() < cell.width || text.size() + kCellEndSize + 1 > cell.width) return false;
    if (bytes[text.size() + 1] != '\0' || text.find('\n') != std::string_view::npos) return false;
    std::string whole(cell.width, '\0');
    CCellWriter(whole, text);
    return !IsDamaged(cell, whole);
}

CDamage DamageOf(const auto& cells, std::int32_t version, std::string_view bytes) {
    CDamage damage;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        const auto& cell = cells[row];
        if (!HasCell(cell, version)) continue;
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        damage.damaged[row] = IsDamaged(cell, cellBytes);
        damage.lost[row] = damage.damaged[row] && !IsLegible(cell, cellBytes);
        damage.odd[row] = !damage.damaged[row] && IsOdd(cell, cellBytes);
        bytes.remove_prefix(cellBytes.size());
    }
    return damage;
}

}  // namespace

CDamage DamageOfFileHdr(std::string_view bytes) { return DamageOf(kFileCells, kNewestVersion, bytes); }

CDamage DamageOfRecordingHdr(std::string_view bytes, std::int32_t version) {
    return DamageOf(kRecordingCells, version, bytes);
}

CDamage DamageOfSegmentHdr(std::string_view bytes) { return DamageOf(kSegmentCells, kNewestVersion, bytes); }

void LoseCellsBehind(std::size_t size, std::int32_t version, CDamage& damage) {
    std::size_t end = 0;
    for (std::size_t row = 0; row < kRecordingCells.size(); ++row) {
        if (!HasCell(kRecordingCells[row], version)) continue;
        end += kRecordingCells[row].width;
        if (end > size) damage.Lose(row);
    }
}

}  // namespace vxfile
