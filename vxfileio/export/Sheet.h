#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vxfileio/export/Cell.h"

namespace YExcel {

/// A table of cells. It has as many rows and columns as were ever requested, counted from 0.
///
/// Memory is proportional to the requested cells, in tiles of a few columns and rows, regardless of their position.
/// Cells never move.
class Sheet {
 public:
    static constexpr std::uint32_t kMostRows = 65536;
    static constexpr std::uint32_t kMostColumns = 256;

    explicit Sheet(std::string name) : m_name(std::move(name)) {}

    const std::string& Name() const { return m_name; }
    void Rename(std::string name) { m_name = std::move(name); }

    /// Returns a cell. The table grows if necessary. Returns null beyond 65536 rows and 256 columns. The cell belongs
    /// to the sheet and is valid as long as the sheet exists.
    Cell* At(std::uint32_t row, std::uint32_t column) {
        if (row >= kMostRows || column >= kMostColumns) return nullptr;
        Tile* const known = TileAt(row, column);
        Tile& tile = known == nullptr ? AddTile(row, column) : *known;
        m_rowCount = std::max(m_rowCount, row + 1);
        m_columnCount = std::max(m_columnCount, column + 1);
        return &tile[row % kTileRows][column % kTileColumns];
    }

    /// Calls `take(column, cell)` for every non-empty cell of the row, from left to right.
    template <class Take>
    void ForEachUsed(std::uint32_t row, Take take) const {
        FindUsed(row, [&](std::uint16_t column, const Cell& cell) {
            take(column, cell);
            return false;
        });
    }

    /// Returns the column of the first non-empty cell of the row, if any.
    std::optional<std::uint16_t> FirstUsedColumn(std::uint32_t row) const {
        return FindUsed(row, [](const auto&...) { return true; });
    }

    std::uint32_t RowCount() const { return m_rowCount; }
    std::uint32_t ColumnCount() const { return m_columnCount; }

 private:
    // Cells are stored row by row. The cells of a row in one tile share a cache line.
    static constexpr std::uint32_t kTileRows = 32;
    static constexpr std::uint32_t kTileColumns = 4;
    using Tile = std::array<std::array<Cell, kTileColumns>, kTileRows>;
    using Band = std::vector<std::unique_ptr<Tile>>;  ///< By column / kTileColumns.

    /// Returns the tile of a cell, or null if there is none.
    Tile* TileAt(std::uint32_t row, std::uint32_t column) const {
        const std::size_t band = row / kTileRows;
        const std::size_t tile = column / kTileColumns;
        return band < m_bands.size() && tile < m_bands[band].size() ? m_bands[band][tile].get() : nullptr;
    }
    Tile& AddTile(std::uint32_t row, std::uint32_t column);

    /// Calls `isFound(column, cell)` for the non-empty cells of the row until it returns true. Returns the column where
    /// it did.
    template <class IsFound>
    std::optional<std::uint16_t> FindUsed(std::uint32_t row, IsFound isFound) const;

    std::string m_name;
    std::uint32_t m_rowCount = 0;
    std::uint32_t m_columnCount = 0;
    std::vector<Band> m_bands;  ///< By row / kTileRows.
};

template <class IsFound>
std::optional<std::uint16_t> Sheet::FindUsed(std::uint32_t row, IsFound isFound) const {
    if (row / kTileRows >= m_bands.size()) return std::nullopt;
    const Band& band = m_bands[row / kTileRows];
    for (std::size_t tile = 0; tile < band.size(); ++tile) {
        if (band[tile] == nullptr) continue;
        const auto& cells = (*band[tile])[row % kTileRows];
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const auto column = static_cast<std::uint16_t>(tile * kTileColumns + i);
            if (cells[i].Type() != CellType::Undefined && isFound(column, cells[i])) return column;
        }
    }
    return std::nullopt;
}

}  // namespace YExcel
