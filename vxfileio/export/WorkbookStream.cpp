#include "vxfileio/export/WorkbookStream.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "vxfileio/export/RowBlock.h"

namespace YExcel {

namespace {

std::uint32_t BlockCount(const Sheet& sheet) { return (sheet.RowCount() + RowBlock::kRows - 1) / RowBlock::kRows; }

std::uint32_t Position32(std::size_t position) { return static_cast<std::uint32_t>(position); }

void PutCopies(int count, const auto& record, auto& out) {
    for (int i = 0; i < count; ++i)
        out.Put(record);
}

/// Stores the rows and cells of a sheet. Calls `learn(number, position)` with the offset of the `DBCell` of each block.
template <class Out, class IndexOf, class Learn>
void PutRowBlocks(const Sheet& sheet, Out& out, IndexOf& indexOf, Learn learn) {
    RowBlock block;
    for (std::uint32_t number = 0; number < BlockCount(sheet); ++number) {
        block.Begin(sheet, number);
        learn(number, block.Put(sheet, out, indexOf));
    }
}

/// Stores the records of the globals.
void PutGlobals(const std::vector<CSheetRecords>& sheets, const SharedStringTable& strings, auto& out) {
    out.Put(BOF{.type = BOF::kGlobals});
    out.Put(Window1());
    PutCopies(kFonts, Font(), out);
    PutCopies(kFormats, XF(), out);
    PutCopies(kStyles, Style(), out);
    for (const CSheetRecords& sheet : sheets)
        out.Put(sheet.name);
    out.Put(strings);
    out.Put(YEOF());
}

/// Stores the records of a sheet.
template <class Out, class IndexOf, class Learn>
void PutSheet(const CSheetRecords& sheet, Out& out, IndexOf& indexOf, Learn learn) {
    out.Put(BOF{.type = BOF::kSheet});
    out.Put(sheet.index);
    out.Put(sheet.dimensions);
    PutRowBlocks(*sheet.sheet, out, indexOf, learn);
    out.Put(sheet.window);
    out.Put(YEOF());
}

/// Returns the records of a sheet that don't depend on its cells.
CSheetRecords RecordsOf(const Sheet& sheet, bool isFirst) {
    CSheetRecords records{
        .sheet = &sheet,
        .name = {.name = SmallString(std::string_view(sheet.Name()))},
        .index = {.firstUnusedRow = sheet.RowCount()},
        .dimensions = {.endRow = sheet.RowCount(), .endColumn = static_cast<std::uint16_t>(sheet.ColumnCount())},
        .window = {}};
    records.index.dbCellPositions.resize(std::max(BlockCount(sheet), 1U));
    if (!isFirst) records.window.options &= static_cast<std::uint16_t>(~Window2::kSelected);
    for (std::uint32_t row = 0; row < sheet.RowCount(); ++row) {
        const auto column = sheet.FirstUsedColumn(row);
        if (!column) continue;
        records.index.firstUsedRow = records.dimensions.firstUsedRow = row;
        records.dimensions.firstUsedColumn = *column;
        break;
    }
    return records;
}

/// Increases the stream offsets of a sheet. (A sheet without rows has one block offset, which stays 0.)
void MoveBy(std::size_t bytes, CSheetRecords& sheet) {
    sheet.name.position += Position32(bytes);
    if (BlockCount(*sheet.sheet) == 0) return;
    for (std::uint32_t& position : sheet.index.dbCellPositions)
        position += Position32(bytes);
}

}  // namespace

/// First counts the cells as if the sheets began at offset 0: only after that are all texts known.
CWorkbookStream::CWorkbookStream(const Sheets& sheets) {
    CStreamSize cells;
    auto collect = [&](const Cell& cell) { return m_strings.Add(cell); };
    for (const auto& sheet : sheets) {
        CSheetRecords& records = m_sheets.emplace_back(RecordsOf(*sheet, m_sheets.empty()));
        records.name.position = Position32(cells.Position());
        PutSheet(records, cells, collect, [&](std::uint32_t number, std::size_t position) {
            records.index.dbCellPositions[number] = Position32(position);
        });
    }
    CStreamSize globals;
    PutGlobals(m_sheets, m_strings.Table(), globals);
    for (CSheetRecords& records : m_sheets)
        MoveBy(globals.Position(), records);
    m_size = globals.Position() + cells.Position();
}

void CWorkbookStream::GiveTo(const CRecordStream::Take& take) const {
    CRecordStream stream(take);
    PutGlobals(m_sheets, m_strings.Table(), stream);
    auto repeat = [next = m_strings.Uses().begin()](const Cell& /*cell*/) mutable { return *next++; };
    for (const CSheetRecords& sheet : m_sheets)
        PutSheet(sheet, stream, repeat, [](auto...) {});
    stream.Finish();
}

}  // namespace YExcel
