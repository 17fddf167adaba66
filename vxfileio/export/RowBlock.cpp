#include "vxfileio/export/RowBlock.h"

#include <algorithm>

namespace YExcel {

void RowBlock::Begin(const Sheet& sheet, std::uint32_t number) {
    m_rows.clear();
    const std::uint32_t begin = number * kRows;
    const std::uint32_t end = std::min(begin + kRows, sheet.RowCount());
    for (std::uint32_t row = begin; row < end; ++row) {
        if (sheet.FirstUsedColumn(row)) m_rows.push_back(static_cast<std::uint16_t>(row));
    }
}

}  // namespace YExcel
