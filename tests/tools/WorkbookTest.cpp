#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"
#include "tools/vxfile/workbook/CompoundScan.h"
#include "tools/vxfile/workbook/Records.h"
#include "tools/vxfile/workbook/SharedStringsJudge.h"
#include "tools/vxfile/workbook/WorkbookVerify.h"
#include "vxfileio/export/Document.h"

namespace {

class WorkbookTest : public testing::Test {
 protected:
    void SetUp() override { m_document.CreateSheets(1); }

    YExcel::Cell& At(std::uint32_t row, std::uint32_t column) {
        return *m_document.FindSheet("Sheet1")->At(row, column);
    }
    std::vector<std::byte> Stream() {
        EXPECT_TRUE(m_document.SaveToFile(m_path));
        return vxfile::CCompoundScan(m_path).Stream();
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("book.xls");
    YExcel::Document m_document;
};

// The body of a record ends after 8224 bytes; characters that go on in the next one follow an option byte.
TEST_F(WorkbookTest, TextsThatGoOverTheEndOfARecordAreReadAndFoundSound) {
    std::vector<std::string> expected;
    for (std::uint32_t row = 0; row < 30; ++row) {
        const std::string narrow = std::to_string(row) + std::string(4090 + row, 'n');
        At(row, 0).SetText(narrow);
        At(row, 1).SetWideText(std::u16string(4090 + row, u'\u0457') + static_cast<char16_t>(u'a' + row));
        expected.push_back(narrow);
        std::string wide;
        for (std::uint32_t i = 0; i < 4090 + row; ++i)
            wide += "\xD1\x97";
        expected.push_back(wide + static_cast<char>('a' + row));
    }
    EXPECT_EQ(vxfile::SharedTextsOf(Stream()), expected);
    EXPECT_EQ(vxfile::VerifyWorkbook(m_path).Count(), 0U);
}

TEST_F(WorkbookTest, ARecordIsReadAsItsTypeAndCutFieldsAreDefaults) {
    At(3, 2).SetDouble(1.0 / 3.0);
    const std::vector<std::byte> stream = Stream();
    const auto sheets = vxfile::SheetsOf(stream);
    ASSERT_EQ(sheets.size(), 1U);
    EXPECT_EQ(sheets[0].name, "Sheet1");
    int cells = 0;
    for (auto record = vxfile::RecordAt(stream, sheets[0].position); record;
         record = vxfile::RecordAt(stream, record->End())) {
        if (record->code != YExcel::Number::kCode) continue;
        ++cells;
        const auto number = record->As<YExcel::Number>();
        EXPECT_EQ(number.row, 3);
        EXPECT_EQ(number.column, 2);
        EXPECT_EQ(number.value, 1.0 / 3.0);
        vxfile::CRecord cut = *record;
        cut.body = cut.body.first(13);
        EXPECT_EQ(cut.As<YExcel::Number>().column, 2);
        EXPECT_EQ(cut.As<YExcel::Number>().value, 0.0);
    }
    EXPECT_EQ(cells, 1);
}

}  // namespace
