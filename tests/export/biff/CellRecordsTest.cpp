#include "vxfileio/export/biff/CellRecords.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/export/biff/RecordBytes.h"
#include "vxfileio/export/biff/FormulaRecords.h"

namespace {

using namespace YExcel;

// Each cell is in row 0x0102, column 3, with format 4.
const std::string kPlace = U16(0x0102) + U16(3) + U16(4);

// The reference workbooks have the bytes of numbers, texts and their runs.
TEST(CellRecordsTest, RunOfBlanksEndsWithItsLastColumn) {
    const std::array<std::uint16_t, 3> xfs = {7, 8, 9};
    ExpectRecord(MulBlank{.row = 0x0102, .firstColumn = 3, .xfs = xfs, .lastColumn = 5},
                 U16(0x00BE) + U16(12) + U16(0x0102) + U16(3) + U16(7) + U16(8) + U16(9) + U16(5), 3);
}

TEST(CellRecordsTest, BlanksTruthAndErrors) {
    ExpectRecord(Blank{.row = 0x0102, .column = 3, .xf = 4}, U16(0x0201) + U16(6) + kPlace);
    ExpectRecord(BoolErr{.row = 0x0102, .column = 3, .xf = 4, .value = 0x2A, .isError = 1},
                 U16(0x0205) + U16(8) + kPlace + U8(0x2A) + U8(1));
}

TEST(CellRecordsTest, FormulaAndRecordsAfterIt) {
    const CellRange range{.firstRow = 1, .lastRow = 0x0203, .firstColumn = 4, .lastColumn = 5};
    const std::string rangeBytes = U16(1) + U16(0x0203) + U8(4) + U8(5);
    const Expression expression{"\x1E\x07"};
    const std::string expressionBytes = U16(2) + "\x1E\x07";
    const Formula formula{.row = 0x0102, .column = 3, .xf = 4, .result = 2.0, .options = 1, .expression = expression};
    ExpectRecord(formula, U16(0x0006) + U16(24) + kPlace + U64(0x4000000000000000) +  //
                              U16(1) + U32(0) +                                       // options, reserved
                              expressionBytes);
    ExpectRecord(Array{.range = range, .options = 6, .expression = expression},
                 U16(0x0221) + U16(16) + rangeBytes + U16(6) + U32(0) + expressionBytes);
    const std::string shared = U16(12) + rangeBytes + U8(0) + U8(6) + expressionBytes;
    ExpectRecord(ShrFmla{.range = range, .useCount = 6, .expression = expression}, U16(0x00BC) + shared);
    ExpectRecord(ShrFmla1{.range = range, .useCount = 6, .expression = expression}, U16(0x04BC) + shared);
    const Table table{.range = range,
                      .options = 6,
                      .rowInputRow = 7,
                      .rowInputColumn = 8,
                      .columnInputRow = 9,
                      .columnInputColumn = 10};
    ExpectRecord(table, U16(0x0036) + U16(16) + rangeBytes + U16(6) + U16(7) + U16(8) + U16(9) + U16(10));
    ExpectRecord(String{.text = SstString(std::u16string_view(u"ab"))},
                 U16(0x0207) + U16(7) + U16(2) + U8(1) + Units(u"ab"));
}

}  // namespace
