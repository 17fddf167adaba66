#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/Record.h"
#include "vxfileio/export/biff/RkNumber.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace YExcel {

/// Adjacent numbers of the same short form in a row. They are collected until the run ends: a single number has its own
/// kind of record, several share one.
class CShortRun {
 public:
    /// Adds the number of a cell. If the cell doesn't continue the run, stores the run first.
    template <class Out>
    void Add(CellType type, std::uint16_t column, std::uint32_t word, std::uint16_t row, Out& out);
    /// Stores the run.
    template <class Out>
    void Finish(std::uint16_t row, Out& out) {
        if (!m_items.empty()) PutOut(row, out);
    }

 private:
    template <class Out>
    void PutOut(std::uint16_t row, Out& out);

    CellType m_type = CellType::Undefined;
    std::uint16_t m_firstColumn = 0;
    std::uint16_t m_lastColumn = 0;
    std::vector<MulRK::Item> m_items;  ///< Empty between runs, to reuse the memory.
};

/// Stores up to 32 rows of a sheet as records. One object is reused for all blocks.
class RowBlock {
 public:
    static constexpr std::uint32_t kRows = 32;
    /// Finds the rows of block `number` that aren't empty.
    void Begin(const Sheet& sheet, std::uint32_t number);

    /// Stores the records of the block: its rows, their cells, and the `DBCell`. `indexOf(cell)` returns the index of a
    /// text in the shared strings. Returns the stream offset of the `DBCell`.
    template <class Out, class IndexOf>
    std::size_t Put(const Sheet& sheet, Out& out, IndexOf& indexOf);

 private:
    template <class Out, class IndexOf>
    void PutCells(const Sheet& sheet, std::uint16_t row, Out& out, IndexOf& indexOf);

    std::vector<std::uint16_t> m_rows;
    std::vector<std::uint16_t> m_offsets;  ///< The offsets of the rows, for the `DBCell`.
    CShortRun m_run;
};

template <class Out>
void CShortRun::Add(CellType type, std::uint16_t column, std::uint32_t word, std::uint16_t row, Out& out) {
    if (type != m_type || column != m_lastColumn + 1) Finish(row, out);
    if (m_items.empty()) m_firstColumn = column;
    m_type = type;
    m_lastColumn = column;
    m_items.push_back({.word = word});
}

template <class Out>
void CShortRun::PutOut(std::uint16_t row, Out& out) {
    if (m_items.size() == 1) {
        out.Put(RK{.row = row, .column = m_firstColumn, .word = m_items.front().word});
    } else {
        out.Put(MulRK{.row = row, .firstColumn = m_firstColumn, .items = m_items, .lastColumn = m_lastColumn});
    }
    m_items.clear();
}

template <class Out, class IndexOf>
std::size_t RowBlock::Put(const Sheet& sheet, Out& out, IndexOf& indexOf) {
    const std::size_t begin = out.Position();
    std::size_t last = begin + RecordSize(Row());
    for (const std::uint16_t row : m_rows)
        out.Put(Row{.row = row, .endCell = static_cast<std::uint16_t>(sheet.ColumnCount())});
    m_offsets.clear();
    for (const std::uint16_t row : m_rows) {
        m_offsets.push_back(static_cast<std::uint16_t>(out.Position() - last));
        last = out.Position();
        PutCells(sheet, row, out, indexOf);
    }
    const std::size_t position = out.Position();
    out.Put(DBCell{.firstRowOffset = static_cast<std::uint32_t>(position - begin), .rowOffsets = m_offsets});
    return position;
}

template <class Out, class IndexOf>
void RowBlock::PutCells(const Sheet& sheet, std::uint16_t row, Out& out, IndexOf& indexOf) {
    sheet.ForEachUsed(row, [&](std::uint16_t column, const Cell& cell) {
        const CellType type = cell.Type();
        if (type == CellType::Integer) {
            m_run.Add(type, column, EncodeIntegerRK(cell.GetInteger()), row, out);
        } else if (cell.IsShortDouble()) {
            m_run.Add(type, column, EncodeRK(cell.GetDouble()), row, out);
        } else {
            m_run.Finish(row, out);
            if (type == CellType::Double) {
                out.Put(Number{.row = row, .column = column, .value = cell.GetDouble()});
            } else {
                out.Put(LabelSST{.row = row, .column = column, .stringIndex = indexOf(cell)});
            }
        }
    });
    m_run.Finish(row, out);
}

}  // namespace YExcel
