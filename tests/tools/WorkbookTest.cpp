#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>

#include "tests/support/TempFolder.h"
#include "tools/vxfile/workbook/WorkbookDiff.h"
#include "verify/workbook/CompoundScan.h"
#include "verify/workbook/Records.h"
#include "verify/workbook/SharedStringsJudge.h"
#include "verify/workbook/WorkbookVerify.h"
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

// The body of a record ends after 8224 bytes; characters in the next one follow an option byte.
TEST_F(WorkbookTest, TextsThatSpanRecordsAreReadAndFoundSound) {
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
    At(30, 0).SetWideText(u"\u20AC");
    expected.emplace_back("\xE2\x82\xAC");
    EXPECT_EQ(vxfile::SharedTextsOf(Stream()), expected);
    EXPECT_EQ(vxfile::VerifyWorkbook(m_path).Count(), 0U);
}

// The header lists 109 sectors of the FAT. A list of more sectors, the DIFAT, begins in another sector. The second
// sector of the FAT is sector 128 of the file; its first mark is its own. This one needs two.
TEST_F(WorkbookTest, ThatAreLargeAreSoundAndFaultsInTheirFatAndItsListAreFound) {
    for (std::uint32_t row = 0; row < 4000; ++row)
        At(row, 0).SetText(std::to_string(row) + std::string(4090, 'n'));
    EXPECT_TRUE(m_document.SaveToFile(m_path));
    EXPECT_EQ(vxfile::VerifyWorkbook(m_path).Count(), 0U);
    std::fstream file(m_path, std::ios::in | std::ios::out | std::ios::binary);
    std::uint32_t sector = 0;
    file.seekg(68).read(reinterpret_cast<char*>(&sector), sizeof sector);
    file.seekg(512 * (std::streamoff{sector} + 1) + 508).read(reinterpret_cast<char*>(&sector), sizeof sector);
    file.seekp(512 * 129).put('x');
    file.seekp(512 * (std::streamoff{sector} + 1) + 500).put('x').flush();
    const vxfile::CFindings findings = vxfile::VerifyWorkbook(m_path);
    ASSERT_EQ(findings.Count(), 2U);
    EXPECT_EQ(findings.Kept()[0].where, "FAT > mark 128");
    EXPECT_EQ(findings.Kept()[0].offset, 512 * 129);
    EXPECT_EQ(findings.Kept()[1].where, "DIFAT > mark 253");
    EXPECT_EQ(findings.Kept()[1].offset, 512 * (std::int64_t{sector} + 1) + 500);
}

TEST_F(WorkbookTest, ARecordIsReadByItsTypeAndMissingFieldsHaveDefaults) {
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

TEST_F(WorkbookTest, CellsHaveTheNamesThatSpreadsheetProgramsShow) {
    EXPECT_TRUE(m_document.SaveToFile(m_folder.Path("empty.xls")));
    for (const std::uint32_t column : {0U, 25U, 26U, 51U, 52U, 255U})
        At(9, column).SetText("x");
    EXPECT_TRUE(m_document.SaveToFile(m_path));
    vxfile::CDifferences differences;
    vxfile::CompareWorkbooks(m_folder.Path("empty.xls"), m_path, differences);
    std::string names;
    for (const auto& difference : differences.Kept())
        names += difference.where + " ";
    EXPECT_EQ(names, "Sheet1!A10 Sheet1!Z10 Sheet1!AA10 Sheet1!AZ10 Sheet1!BA10 Sheet1!IV10 ");
}

TEST_F(WorkbookTest, EveryRecordHasASectionInTheDocs) {
    const std::string page = ReadAll(VXFILEIO_REFERENCE_DIR "/../../docs/workbook.md");
    const std::vector<std::byte> stream = vxfile::CCompoundScan(VXFILEIO_REFERENCE_DIR "/workbooks/big.xls").Stream();
    std::map<std::string, std::uint16_t> codes;
    for (auto record = vxfile::RecordAt(stream, 0); record; record = vxfile::RecordAt(stream, record->End()))
        codes[vxfile::RecordName(record->code)] = record->code;
    EXPECT_EQ(codes.size(), 17U);
    for (const auto& [name, code] : codes) {
        char number[8];
        std::snprintf(number, sizeof number, "0x%04X", code);
        EXPECT_NE(page.find("\n### " + name + ": " + number + ", "), std::string::npos) << name << ' ' << number;
    }
}

}  // namespace
