#include "vxfileio/export/Sheet.h"

namespace YExcel {

Sheet::Strip& Sheet::AddStrip(std::uint32_t row, std::uint32_t column) {
    const std::size_t number = row / kStripRows;
    if (number >= m_bands.size()) m_bands.resize(number + 1);
    Band& band = m_bands[number];
    if (column >= band.size()) band.resize(std::size_t{column} + 1);
    band[column] = std::make_unique<Strip>();
    return *band[column];
}

std::optional<std::uint16_t> Sheet::FirstUsedColumn(std::uint32_t row) const {
    const std::size_t number = row / kStripRows;
    if (number >= m_bands.size()) return std::nullopt;
    const Band& band = m_bands[number];
    const auto holdsCell = [&](const auto& strip) {
        return strip != nullptr && (*strip)[row % kStripRows].Type() != CellType::Undefined;
    };
    const auto found = std::find_if(band.begin(), band.end(), holdsCell);
    if (found == band.end()) return std::nullopt;
    return static_cast<std::uint16_t>(found - band.begin());
}

}  // namespace YExcel
