#include "vxfileio/export/WorkbookStream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vxfileio/export/RowBlock.h"
#include "vxfileio/export/SharedStrings.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace YExcel {

namespace {

constexpr int kFonts = 4;
constexpr int kFormats = 21;
constexpr int kStyles = 6;

std::uint32_t BlockCount(const Sheet& sheet) { return (sheet.RowCount() + RowBlock::kRows - 1) / RowBlock::kRows; }

std::uint32_t Position32(std::size_t position) { return static_cast<std::uint32_t>(position); }

void PutCopies(int count, const auto& record, auto& out) {
    for (int i = 0; i < count; ++i)
        out.Put(record);
}

/// Puts the rows and cells of a sheet, and fills in what the records in front of them tell about them.
template <class Out, class IndexOf>
void PutRowBlocks(const Sheet& sheet, Index& index, Dimensions& dimensions, Out& out, IndexOf& indexOf) {
    RowBlock block;
    bool isUsed = false;
    for (std::uint32_t number = 0; number < BlockCount(sheet); ++number) {
        block.Begin(sheet, number);
        if (!isUsed && !block.IsEmpty()) {
            isUsed = true;
            index.firstUsedRow = dimensions.firstUsedRow = block.FirstRow();
            dimensions.firstUsedColumn = block.FirstColumn();
        }
        index.dbCellPositions[number] = Position32(block.Put(sheet, out, indexOf));
    }
}

/// The records of a sheet, in their order. Those that tell about the cells go out twice: first to hold their places.
template <class Out, class IndexOf>
void PutSheet(const Sheet& sheet, bool isFirst, Out& out, IndexOf& indexOf) {
    Index index{.firstUnusedRow = sheet.RowCount()};
    index.dbCellPositions.resize(std::max(BlockCount(sheet), 1U));
    Dimensions dimensions{.endRow = sheet.RowCount(), .endColumn = static_cast<std::uint16_t>(sheet.ColumnCount())};
    Window2 window;
    if (!isFirst) window.options &= static_cast<std::uint16_t>(~Window2::kSelected);

    out.Put(BOF{.type = BOF::kSheet});
    const std::size_t indexPosition = out.Position();
    out.Put(index);
    const std::size_t dimensionsPosition = out.Position();
    out.Put(dimensions);
    PutRowBlocks(sheet, index, dimensions, out, indexOf);
    out.Put(window);
    out.Put(YEOF());

    out.Replace(indexPosition, index);
    out.Replace(dimensionsPosition, dimensions);
}

BoundSheet BoundSheetOf(const Sheet& sheet, std::size_t position) {
    return {.position = Position32(position), .name = SmallString(std::string_view(sheet.Name()))};
}

/// The records of a workbook, in their order. Each sheet's name learns where the sheet stands once that is known.
template <class Out, class IndexOf>
void PutWorkbook(const Sheets& sheets, const SharedStringTable& strings, Out& out, IndexOf& indexOf) {
    out.Put(BOF{.type = BOF::kGlobals});
    out.Put(Window1());
    PutCopies(kFonts, Font(), out);
    PutCopies(kFormats, XF(), out);
    PutCopies(kStyles, Style(), out);
    std::size_t namePosition = out.Position();
    for (const auto& sheet : sheets)
        out.Put(BoundSheetOf(*sheet, 0));
    out.Put(strings);
    out.Put(YEOF());

    for (const auto& sheet : sheets) {
        const BoundSheet name = BoundSheetOf(*sheet, out.Position());
        out.Replace(namePosition, name);
        namePosition += RecordSize(name);
        PutSheet(*sheet, sheet == sheets.front(), out, indexOf);
    }
}

}  // namespace

RecordStream BuildWorkbookStream(const Sheets& sheets) {
    SharedStrings strings;
    auto collect = [&](const Cell& cell) { return strings.Add(cell); };

    // Once over the cells to count the bytes, with no texts in the table yet, and once more to store them.
    StreamSize size;
    PutWorkbook(sheets, SharedStringTable(), size, collect);
    const SharedStringTable& table = strings.Table();
    const std::size_t tableGrowth = RecordSize(table) - RecordSize(SharedStringTable());

    RecordStream stream(size.Position() + tableGrowth);
    auto repeat = [next = strings.Uses().begin()](const Cell& /*cell*/) mutable { return *next++; };
    PutWorkbook(sheets, table, stream, repeat);
    return stream;
}

}  // namespace YExcel
