#include "vxfileio/export/RowBlock.h"

#include <algorithm>

namespace YExcel {

void ShortRun::Add(CellType type, std::uint16_t column, std::uint32_t word, std::uint16_t row, RecordStream& out) {
    if (type != m_type || column != m_lastColumn + 1) Finish(row, out);
    if (m_items.empty()) m_firstColumn = column;
    m_type = type;
    m_lastColumn = column;
    m_items.push_back({.word = word});
}

void ShortRun::Finish(std::uint16_t row, RecordStream& out) {
    if (m_items.empty()) return;
    if (m_items.size() == 1) {
        out.Put(RK{.row = row, .column = m_firstColumn, .word = m_items.front().word});
    } else {
        out.Put(MulRK{.row = row, .firstColumn = m_firstColumn, .items = m_items, .lastColumn = m_lastColumn});
    }
    m_items.clear();
}

void RowBlock::Begin(const Sheet& sheet, std::uint32_t number) {
    m_rows.clear();
    const std::uint32_t begin = number * kRows;
    const std::uint32_t end = std::min(begin + kRows, sheet.RowCount());
    for (std::uint32_t row = begin; row < end; ++row) {
        const auto column = sheet.FirstUsedColumn(row);
        if (!column) continue;
        if (m_rows.empty()) m_firstColumn = *column;
        m_rows.push_back(static_cast<std::uint16_t>(row));
    }
}

}  // namespace YExcel
