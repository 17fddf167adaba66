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

/// More than the records around the sheets take without their texts, and more than those around the cells of a sheet.
constexpr std::size_t kMostFrameSize = 1024;

std::uint32_t BlockCount(const Sheet& sheet) { return (sheet.RowCount() + RowBlock::kRows - 1) / RowBlock::kRows; }

std::uint32_t Position32(std::size_t position) { return static_cast<std::uint32_t>(position); }

void PutCopies(int count, const auto& record, RecordStream& out) {
    for (int i = 0; i < count; ++i)
        out.Put(record);
}

/// Puts the rows and cells of a sheet, and fills in what the records in front of them tell about them.
template <class IndexOf>
void PutRowBlocks(const Sheet& sheet, Index& index, Dimensions& dimensions, RecordStream& out, IndexOf& indexOf) {
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
template <class IndexOf>
void PutSheet(const Sheet& sheet, bool isFirst, RecordStream& out, IndexOf& indexOf) {
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
template <class IndexOf>
void PutWorkbook(const Sheets& sheets, const SharedStringTable& strings, RecordStream& out, IndexOf indexOf) {
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

/// Takes in the texts of a sheet, in the order in which its records will ask for them. Returns the most bytes that the
/// sheet's records can take.
std::size_t Survey(const Sheet& sheet, SharedStrings& strings) {
    std::size_t cells = 0;
    for (std::uint32_t row = 0; row < sheet.RowCount(); ++row) {
        sheet.ForEachUsed(row, [&](std::uint16_t /*column*/, const Cell& cell) {
            ++cells;
            if (cell.HasText()) strings.Add(cell);
        });
    }
    const std::size_t indexEntries = BlockCount(sheet) * sizeof(std::uint32_t);
    return kMostFrameSize + indexEntries + BlockCount(sheet) * RowBlock::kMostFrameSize +
           cells * RowBlock::kMostCellSize;
}

}  // namespace

RecordStream BuildWorkbookStream(const Sheets& sheets) {
    SharedStrings strings;
    std::size_t mostBytes = kMostFrameSize;
    for (const auto& sheet : sheets)
        mostBytes += Survey(*sheet, strings);
    mostBytes += RecordSize(strings.Table());

    RecordStream stream(mostBytes);
    PutWorkbook(sheets, strings.Table(), stream,
                [next = strings.Uses().begin()](const Cell& /*cell*/) mutable { return *next++; });
    return stream;
}

}  // namespace YExcel
