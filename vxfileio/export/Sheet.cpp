#include "vxfileio/export/Sheet.h"

namespace YExcel {

Sheet::Tile& Sheet::AddTile(std::uint32_t row, std::uint32_t column) {
    const std::size_t number = row / kTileRows;
    const std::size_t place = column / kTileColumns;
    if (number >= m_bands.size()) m_bands.resize(number + 1);
    Band& band = m_bands[number];
    if (place >= band.size()) band.resize(place + 1);
    band[place] = std::make_unique<Tile>();
    return *band[place];
}

}  // namespace YExcel
