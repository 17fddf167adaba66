#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "vxfileio/export/Sheet.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/Record.h"
#include "vxfileio/export/biff/RkNumber.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace YExcel {

/// Which record a cell becomes. Neighbours of the same short form share one.
enum class CellForm : std::uint8_t { IntegerRK, DecimalRK, Number, Label };

/// Returns the word of a cell that has a short form.
inline std::uint32_t WordOf(CellForm form, const Cell& cell) {
    return form == CellForm::IntegerRK ? EncodeIntegerRK(cell.GetInteger()) : EncodeRK(cell.GetDouble());
}

/// The cells of up to 32 rows that hold something, taken together for their records. One object serves block after
/// block, so that its memory is used again.
class RowBlock {
 public:
    static constexpr std::uint32_t kRows = 32;

    /// Takes the cells of block `number` of the sheet in place of those before. They must not change while they are in
    /// use here.
    void Gather(const Sheet& sheet, std::uint32_t number);

    bool IsEmpty() const { return m_rows.empty(); }
    /// The first row that has a cell, and the column of its first one. Only if the block isn't empty.
    std::uint16_t FirstRow() const { return m_rows.front().row; }
    std::uint16_t FirstColumn() const { return m_cells.front().column; }

    /// Puts the records of the block: its rows, their cells, the way back to them. `indexOf(cell)` gives the index of a
    /// text in the shared strings. Returns where the `DBCell` stands.
    template <class Out, class IndexOf>
    std::size_t Put(Out& out, IndexOf& indexOf);

 private:
    struct UsedRow {
        std::uint16_t row;
        std::size_t begin;  ///< Of its cells.
        std::size_t count;
    };
    struct UsedCell {
        std::uint16_t column;
        CellForm form;
        const Cell* cell;
    };

    /// Neighbouring cells that one record holds.
    using Run = std::span<const UsedCell>;

    void GatherRow(const Sheet& sheet, std::uint32_t row);
    /// Returns the run that the rest of a row begins with.
    static Run FirstRun(Run rest);

    template <class Out, class IndexOf>
    void PutCells(const UsedRow& row, Out& out, IndexOf& indexOf);
    template <class Out, class IndexOf>
    void PutRun(std::uint16_t row, Run run, Out& out, IndexOf& indexOf);
    /// Returns the items of a run's record, valid until the next call.
    std::span<const MulRK::Item> ItemsOf(Run run);

    std::uint16_t m_columnCount = 0;
    std::vector<UsedRow> m_rows;
    std::vector<UsedCell> m_cells;
    std::vector<MulRK::Item> m_items;
};

template <class Out, class IndexOf>
std::size_t RowBlock::Put(Out& out, IndexOf& indexOf) {
    const std::size_t begin = out.Position();
    std::size_t last = begin + RecordSize(Row());
    for (const UsedRow& row : m_rows)
        out.Put(Row{.row = row.row, .endCell = m_columnCount});
    DBCell dbCell;
    for (const UsedRow& row : m_rows) {
        dbCell.rowOffsets.push_back(static_cast<std::uint16_t>(out.Position() - last));
        last = out.Position();
        PutCells(row, out, indexOf);
    }
    const std::size_t position = out.Position();
    dbCell.firstRowOffset = static_cast<std::uint32_t>(position - begin);
    out.Put(dbCell);
    return position;
}

template <class Out, class IndexOf>
void RowBlock::PutCells(const UsedRow& row, Out& out, IndexOf& indexOf) {
    for (Run rest = Run(m_cells).subspan(row.begin, row.count); !rest.empty();) {
        const Run run = FirstRun(rest);
        PutRun(row.row, run, out, indexOf);
        rest = rest.subspan(run.size());
    }
}

template <class Out, class IndexOf>
void RowBlock::PutRun(std::uint16_t row, Run run, Out& out, IndexOf& indexOf) {
    const auto [column, form, cell] = run.front();
    if (form == CellForm::Label) {
        out.Put(LabelSST{.row = row, .column = column, .stringIndex = indexOf(*cell)});
    } else if (form == CellForm::Number) {
        out.Put(Number{.row = row, .column = column, .value = cell->GetDouble()});
    } else if (run.size() == 1) {
        out.Put(RK{.row = row, .column = column, .word = WordOf(form, *cell)});
    } else {
        out.Put(MulRK{.row = row, .firstColumn = column, .items = ItemsOf(run), .lastColumn = run.back().column});
    }
}

}  // namespace YExcel
