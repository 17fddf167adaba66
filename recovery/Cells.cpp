#include "recovery/Cells.h"

#include <type_traits>
#include <variant>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/CellFault.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// Returns whether a well-formed number is possible: positions are -1 or more, and a list has limited room.
bool IsPossible(const auto& cell, std::string_view bytes) {
    const std::int64_t value = helpers::ParseInt64(CellValue(bytes));
    if (cell.traits.role == ERole::UnusedPosition) return value == kUnset;
    if (cell.traits.role == ERole::Position) return value >= kUnset;
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(cell)>, CRecordingCell>) {
        if (std::holds_alternative<CChannelCount>(cell.member))
            return value >= 0 && value <= static_cast<std::int64_t>(Layouts().back().mostChannels);
    }
    return true;
}

bool IsDamaged(const auto& cell, std::string_view bytes) {
    const auto fault = FaultOf(cell, bytes);
    return fault ? fault->kind != ECellFault::Separator : !IsPossible(cell, bytes);
}

/// Returns whether the text of a damaged cell is reliable. A single NUL may be a damaged character instead of the end.
/// A line end within the text may be that of this cell, with another cell after it.
bool IsLegible(const auto& cell, std::string_view bytes) {
    const std::string_view text = CellText(bytes);
    if (text.size() + kCellEndSize + 1 > cell.width) return false;
    if (bytes[text.size() + 1] != '\0' || text.find('\n') != std::string_view::npos) return false;
    std::string whole(cell.width, '\0');
    CCellWriter(whole, text);
    return !IsDamaged(cell, whole);
}

}  // namespace

template <class Cell>
CDamage DamageOf(const CHdrLayout<Cell>& layout, std::string_view bytes) {
    CDamage damage;
    for (std::size_t row = 0; row < layout.cells.size(); ++row) {
        const Cell& cell = layout.cells[row];
        const std::string_view cellBytes = CellIn(cell, bytes);
        const auto fault = FaultOf(cell, cellBytes);
        damage.odd[row] = fault && fault->kind == ECellFault::Separator;
        damage.damaged[row] = IsDamaged(cell, cellBytes);
        damage.lost[row] = damage.damaged[row] && !IsLegible(cell, cellBytes);
    }
    return damage;
}

template CDamage DamageOf(const CHdrLayout<CFileCell>& layout, std::string_view bytes);
template CDamage DamageOf(const CHdrLayout<CRecordingCell>& layout, std::string_view bytes);
template CDamage DamageOf(const CHdrLayout<CSegmentCell>& layout, std::string_view bytes);

}  // namespace vxfileio::recovery
