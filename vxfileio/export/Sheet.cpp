#include "vxfileio/export/Sheet.h"

#include <algorithm>

namespace YExcel {

Cell* Sheet::At(std::uint32_t row, std::uint32_t column) {
    if (row >= kMostRows || column >= kMostColumns) return nullptr;
    const std::size_t number = row / kStripRows;
    if (number >= m_bands.size()) m_bands.resize(number + 1);
    Band& band = m_bands[number];
    if (column >= band.size()) band.resize(std::size_t{column} + 1);
    auto& strip = band[column];
    if (strip == nullptr) strip = std::make_unique<Strip>();
    m_rowCount = std::max(m_rowCount, row + 1);
    m_columnCount = std::max(m_columnCount, column + 1);
    return &(*strip)[row % kStripRows];
}

}  // namespace YExcel
