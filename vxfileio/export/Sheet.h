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

/// A table of cells, as high and wide as the highest row and column that were ever asked for. Rows and columns count
/// from 0.
///
/// Memory goes with the cells that were asked for, in strips of one column and a band of rows, wherever they lie. A
/// cell never moves.
class Sheet {
 public:
    static constexpr std::uint32_t kMostRows = 65536;
    static constexpr std::uint32_t kMostColumns = 256;

    explicit Sheet(std::string name) : m_name(std::move(name)) {}

    const std::string& Name() const { return m_name; }
    void Rename(std::string name) { m_name = std::move(name); }

    /// Returns the cell, which the table grows to hold if need be; null beyond the sheet's 65536 rows and 256 columns.
    /// The cell is the sheet's, valid as long as the sheet.
    Cell* At(std::uint32_t row, std::uint32_t column) {
        if (row >= kMostRows || column >= kMostColumns) return nullptr;
        Strip* const known = StripAt(row, column);
        Strip& strip = known == nullptr ? AddStrip(row, column) : *known;
        m_rowCount = std::max(m_rowCount, row + 1);
        m_columnCount = std::max(m_columnCount, column + 1);
        return &strip[row % kStripRows];
    }

    /// Calls `take(column, cell)` for every cell of the row that holds something, from left to right.
    template <class Take>
    void ForEachUsed(std::uint32_t row, Take take) const;

    /// Returns the column of the first cell of the row that holds something, if there is one.
    std::optional<std::uint16_t> FirstUsedColumn(std::uint32_t row) const;

    std::uint32_t RowCount() const { return m_rowCount; }
    std::uint32_t ColumnCount() const { return m_columnCount; }

 private:
    static constexpr std::uint32_t kStripRows = 128;
    using Strip = std::array<Cell, kStripRows>;
    using Band = std::vector<std::unique_ptr<Strip>>;  ///< By column.

    /// Returns the strip of a cell, or null if there is none yet.
    Strip* StripAt(std::uint32_t row, std::uint32_t column) const {
        const std::size_t number = row / kStripRows;
        if (number >= m_bands.size() || column >= m_bands[number].size()) return nullptr;
        return m_bands[number][column].get();
    }
    Strip& AddStrip(std::uint32_t row, std::uint32_t column);

    std::string m_name;
    std::uint32_t m_rowCount = 0;
    std::uint32_t m_columnCount = 0;
    std::vector<Band> m_bands;  ///< By row / kStripRows.
};

template <class Take>
void Sheet::ForEachUsed(std::uint32_t row, Take take) const {
    const std::size_t number = row / kStripRows;
    if (number >= m_bands.size()) return;
    std::uint16_t column = 0;
    for (const auto& strip : m_bands[number]) {
        if (strip != nullptr) {
            const Cell& cell = (*strip)[row % kStripRows];
            if (cell.Type() != CellType::Undefined) take(column, cell);
        }
        ++column;
    }
}

}  // namespace YExcel
