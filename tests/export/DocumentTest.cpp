#include "vxfileio/export/Document.h"

#include <gtest/gtest.h>

#include "tests/export/WorkbookReader.h"
#include "tests/export/biff/RecordBytes.h"
#include "tests/support/TempFolder.h"

namespace {

using YExcel::Document;
using YExcel::Sheet;

/// Returns the names of a document's sheets, in the order of its stream.
std::string Names(const Document& document) {
    std::string names;
    for (const auto& record : workbook_reader::RecordsOf(StreamOf(document)))
        if (record.code == 0x0085) names += record.body.substr(8) + " ";
    return names;
}

TEST(DocumentTest, RenameNeedsAnExistingNameAndAFreeOne) {
    Document document;
    document.CreateSheets(2);
    EXPECT_TRUE(document.RenameSheet("Sheet1", "Results"));
    EXPECT_FALSE(document.RenameSheet("Sheet1", "Other"));
    EXPECT_FALSE(document.RenameSheet("Sheet2", "Results"));
    EXPECT_FALSE(document.RenameSheet("Sheet2", "Sheet2"));
    EXPECT_TRUE(document.RenameSheet("Sheet2", "results"));
    EXPECT_EQ(Names(document), "Results results ");
    EXPECT_EQ(document.FindSheet("RESULTS"), nullptr);
}

TEST(DocumentTest, SheetGrowsToTheRequestedCellAndNoFurther) {
    Document document;
    document.CreateSheets(1);
    Sheet& sheet = *document.FindSheet("Sheet1");
    YExcel::Cell* const cell = sheet.At(3, 4);
    cell->SetInteger(5);
    EXPECT_EQ(sheet.RowCount(), 4U);
    EXPECT_EQ(sheet.ColumnCount(), 5U);
    EXPECT_EQ(sheet.At(65536, 0), nullptr);
    EXPECT_EQ(sheet.At(0, 256), nullptr);
    EXPECT_EQ(sheet.At(0xFFFFFFFF, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(sheet.RowCount(), 4U);
    EXPECT_NE(sheet.At(65535, 255), nullptr);
    EXPECT_EQ(sheet.RowCount(), 65536U);
    EXPECT_EQ(sheet.ColumnCount(), 256U);
    EXPECT_EQ(sheet.At(3, 4), cell);
    EXPECT_EQ(cell->GetInteger(), 5);
    for (std::uint32_t row = 0; row < 300; ++row) {  // cells are independent
        for (std::uint32_t column = 0; column < 20; ++column)
            EXPECT_EQ(sheet.At(row, column)->Type() == YExcel::CellType::Undefined, row != 3 || column != 4);
    }
}

TEST(DocumentTest, SaveReturnsFalseIfTheFileCannotBeCreatedOrWritten) {
    const CTempFolder folder;
    Document document;
    document.CreateSheets(1);
    EXPECT_FALSE(document.SaveToFile(folder.Path("no such folder/run.xls")));
    EXPECT_FALSE(document.SaveToFile(folder.Path("")));
    EXPECT_FALSE(document.SaveToFile(folder.Path(std::string("run\0.xls", 8))));
    EXPECT_TRUE(document.SaveToFile(folder.Path("run.xls")));
}

}  // namespace
