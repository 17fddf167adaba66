#include "vxfileio/export/RowBlock.h"

#include <algorithm>

#include "vxfileio/export/biff/RkNumber.h"

namespace YExcel {

namespace {

bool IsShort(CellForm form) { return form == CellForm::IntegerRK || form == CellForm::DecimalRK; }

CellForm FormOf(const Cell& cell) {
    switch (cell.Type()) {
        case CellType::Integer:
            return CellForm::IntegerRK;
        case CellType::Double:
            return TwoDecimalTest(cell.GetDouble()) ? CellForm::DecimalRK : CellForm::Number;
        default:
            return CellForm::Label;
    }
}

}  // namespace

void RowBlock::Gather(const Sheet& sheet, std::uint32_t number) {
    m_rows.clear();
    m_cells.clear();
    m_columnCount = static_cast<std::uint16_t>(sheet.ColumnCount());
    const std::uint32_t begin = number * kRows;
    const std::uint32_t end = std::min(begin + kRows, sheet.RowCount());
    for (std::uint32_t row = begin; row < end; ++row)
        GatherRow(sheet, row);
}

void RowBlock::GatherRow(const Sheet& sheet, std::uint32_t row) {
    const std::size_t begin = m_cells.size();
    sheet.ForEachUsed(row, [this](std::uint32_t column, const Cell& cell) {
        m_cells.push_back({static_cast<std::uint16_t>(column), FormOf(cell), &cell});
    });
    const std::size_t count = m_cells.size() - begin;
    if (count != 0) m_rows.push_back({static_cast<std::uint16_t>(row), begin, count});
}

RowBlock::Run RowBlock::FirstRun(Run rest) {
    const CellForm form = rest.front().form;
    std::size_t size = 1;
    if (!IsShort(form)) return rest.first(size);
    while (size < rest.size() && rest[size].form == form && rest[size].column == rest[size - 1].column + 1)
        ++size;
    return rest.first(size);
}

std::span<const MulRK::Item> RowBlock::ItemsOf(Run run) {
    m_items.clear();
    for (const UsedCell& cell : run)
        m_items.push_back({.word = WordOf(cell.form, *cell.cell)});
    return m_items;
}

}  // namespace YExcel
