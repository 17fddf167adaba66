#include "recovery/Cells.h"

#include <algorithm>
#include <type_traits>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/CellFault.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// Returns whether a well-formed number is possible: positions are -1 or more, a list has limited room, and a segment
/// has at least one sample.
bool IsPossible(const auto& cell, std::string_view bytes) {
    using Cell = std::remove_cvref_t<decltype(cell)>;
    const std::int64_t value = helpers::ParseInt64(CellValue(bytes));
    if (cell.traits.role == ERole::UnusedPosition) return value == kUnset;
    if (cell.traits.role == ERole::Position) return value >= kUnset;
    if constexpr (std::is_same_v<Cell, CRecordingCell>) {
        if (std::holds_alternative<CChannelCount>(cell.member))
            return value >= 0 && value <= static_cast<std::int64_t>(Layouts().back().mostChannels);
    } else if constexpr (std::is_same_v<Cell, CSegmentCell>) {
        if (cell.key == "Size") return value >= 1 && value <= kMostSamples;
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

template <class Cell>
CForm MakeForm(EKind kind, std::size_t layout, const CHdrLayout<Cell>& header) {
    CForm form{.kind = kind,
               .layout = static_cast<std::uint8_t>(layout),
               .size = static_cast<std::int64_t>(header.size),
               .cells = {}};
    for (const Cell& cell : header.cells)
        form.cells.push_back({cell.key, cell.offset, cell.width, cell.traits.role, &cell});
    return form;
}

std::array<std::vector<CForm>, 3> MakeForms() {
    std::array<std::vector<CForm>, 3> forms;
    const auto add = [&](CForm form) {
        auto& list = forms[static_cast<std::size_t>(form.kind)];
        if (!list.empty() && list.back().cells == form.cells) list.pop_back();
        list.push_back(std::move(form));
    };
    for (std::size_t i = 0; i < Layouts().size(); ++i) {
        add(MakeForm(EKind::File, i, Layouts()[i].file));
        add(MakeForm(EKind::Recording, i, Layouts()[i].recording));
        add(MakeForm(EKind::Segment, i, Layouts()[i].segment));
    }
    return forms;
}

}  // namespace

std::size_t CForm::RowOf(std::string_view key) const {
    return static_cast<std::size_t>(std::ranges::find(cells, key, &CFormCell::key) - cells.begin());
}

std::span<const CForm> FormsOf(EKind kind) {
    static const auto kForms = MakeForms();
    return kForms[static_cast<std::size_t>(kind)];
}

std::int64_t LeastSizeOf(EKind kind) { return std::ranges::min(FormsOf(kind), {}, &CForm::size).size; }

const CForm& FormOf(EKind kind, const CLayout& layout) {
    return *std::ranges::lower_bound(FormsOf(kind), &layout - Layouts().data(), {}, &CForm::layout);
}

std::string_view CHdrCells::Value(std::string_view key) const { return CellValue(Cell(form->RowOf(key))); }

void CHdrCells::SetText(std::size_t row, std::string_view text) {
    const CFormCell& cell = form->cells[row];
    CCellWriter(std::span(bytes).subspan(cell.offset, cell.width), text);
}

CHdrCells CellsAt(CWindow& window, const CForm& form, const CHdrPlace& place) {
    CHdrCells cells{.form = &form, .bytes = std::string(static_cast<std::size_t>(form.size), '\0')};
    for (std::size_t row = 0; row < form.cells.size(); ++row) {
        const CFormCell& cell = form.cells[row];
        const std::string_view found = window.At(place.OffsetOf(form, row), cell.width);
        cells.bytes.replace(cell.offset, found.size(), found);
        const std::string_view bytes = cells.Cell(row);
        std::visit(
            [&](const auto* rule) {
                const auto fault = FaultOf(*rule, bytes);
                cells.odd[row] = fault && fault->kind == ECellFault::Separator;
                cells.damaged[row] = IsDamaged(*rule, bytes);
                cells.lost[row] = cells.damaged[row] && !IsLegible(*rule, bytes);
            },
            cell.rule);
    }
    return cells;
}

}  // namespace vxfileio::recovery
