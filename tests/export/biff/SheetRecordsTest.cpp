#include "vxfileio/export/biff/SheetRecords.h"

#include <gtest/gtest.h>

#include "tests/export/biff/RecordBytes.h"

namespace {

using YExcel::DBCell;
using YExcel::Dimensions;
using YExcel::Index;
using YExcel::Row;
using YExcel::Window2;

TEST(SheetRecordsTest, IndexAndDimensions) {
    const Index index{.firstUsedRow = 2, .firstUnusedRow = 65536, .dbCellPositions = {0x1234, 0x12345}};
    ExpectRecord(index,
                 U16(0x020B) + U16(24) +          //
                     U32(0) +                     // reserved
                     U32(2) + U32(65536) +        // rows
                     U32(0) +                     // reserved
                     U32(0x1234) + U32(0x12345),  // positions
                 2);
    const Dimensions dimensions{.firstUsedRow = 2, .endRow = 65536, .firstUsedColumn = 3, .endColumn = 256};
    ExpectRecord(dimensions, U16(0x0200) + U16(14) +    //
                                 U32(2) + U32(65536) +  // rows
                                 U16(3) + U16(256) +    // columns
                                 U16(0));               // reserved
}

TEST(SheetRecordsTest, Window) {
    ExpectRecord(Window2(), U16(0x023E) + U16(18) +         //
                                U16(0x06B6) +               // options
                                U16(0) + U16(0) +           // first row, first column
                                U16(64) +                   // gridline colour
                                U16(0) + U16(0) + U16(0) +  // reserved, zooms
                                U32(0));                    // reserved
}

TEST(SheetRecordsTest, RowAndEndOfRowBlock) {
    ExpectRecord(Row{.row = 65535, .firstCell = 1, .endCell = 256}, U16(0x0208) + U16(16) +  //
                                                                        U16(65535) +         // row
                                                                        U16(1) + U16(256) +  // cells
                                                                        U16(255) +           // height
                                                                        U16(0) + U16(0) +    // reserved
                                                                        U32(0));             // options
    const std::uint16_t offsets[] = {20, 0x405};
    ExpectRecord(DBCell{.firstRowOffset = 0x10203, .rowOffsets = offsets},
                 U16(0x00D7) + U16(8) + U32(0x10203) + U16(20) + U16(0x405), 2);
    ExpectRecord(DBCell(), U16(0x00D7) + U16(4) + U32(0));
}

}  // namespace
