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

TEST(DocumentTest, CreateSheetsReplacesAllSheets) {
    Document document;
    EXPECT_EQ(document.FindSheet("Sheet1"), nullptr);
    document.CreateSheets(3);
    EXPECT_EQ(Names(document), "Sheet1 Sheet2 Sheet3 ");
    document.FindSheet("Sheet1")->At(0, 0)->SetText("old");
    for (const int count : {1, 0, -5}) {
        document.CreateSheets(count);
        EXPECT_EQ(Names(document), "Sheet1 ");
        EXPECT_EQ(document.FindSheet("Sheet1")->RowCount(), 0U);
    }
}

TEST(DocumentTest, SheetsKeepTheOrderInWhichTheyWereInserted) {
    Document document;
    document.CreateSheets(2);
    Sheet* const second = document.FindSheet("Sheet2");
    const Sheet* const first = document.AddSheet("first", 0);
    EXPECT_EQ(document.FindSheet("first"), first);
    document.AddSheet("third", 2);
    document.AddSheet("last", -1);
    document.AddSheet("beyond", 99);
    EXPECT_EQ(Names(document), "first Sheet1 third Sheet2 last beyond ");
    EXPECT_EQ(document.FindSheet("Sheet2"), second);
    EXPECT_EQ(document.AddSheet("last"), nullptr);
}

TEST(DocumentTest, DefaultNamesSkipThoseInUse) {
    Document document;
    document.CreateSheets(1);
    document.AddSheet("Sheet3");
    document.AddSheet("Sheet4", 0);
    const Sheet* const fifth = document.AddDefaultSheet(0);
    const Sheet* const sixth = document.AddDefaultSheet();
    EXPECT_EQ(document.FindSheet("Sheet5"), fifth);
    EXPECT_EQ(document.FindSheet("Sheet6"), sixth);
    document.AddSheet("Sheet7");
    document.AddDefaultSheet();
    EXPECT_EQ(Names(document), "Sheet5 Sheet4 Sheet1 Sheet3 Sheet6 Sheet7 Sheet8 ");
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
