#include "vxfileio/export/WorkbookStream.h"

#include <gtest/gtest.h>

#include "tests/export/WorkbookReader.h"
#include "tests/export/biff/RecordBytes.h"
#include "tests/support/LinearTime.h"
#include "vxfileio/export/Document.h"

namespace {

using YExcel::Document;
using YExcel::Sheet;

/// A workbook with "Sheet1". The reference workbooks have the bytes of all other records; this is about its texts.
class WorkbookStreamTest : public testing::Test {
 protected:
    WorkbookStreamTest() { m_document.CreateSheets(1); }

    Sheet& First() { return *m_document.FindSheet("Sheet1"); }

    /// Returns the bodies of all records with this code, in order.
    std::vector<std::string> Bodies(std::uint32_t code) const {
        std::vector<std::string> bodies;
        for (const auto& record : workbook_reader::RecordsOf(StreamOf(m_document)))
            if (record.code == code) bodies.push_back(record.body);
        return bodies;
    }
    std::string Table() const { return Bodies(0x00FC).at(0); }
    std::vector<std::string> Cells() const { return Bodies(0x00FD); }

    Document m_document;
};

/// Returns a cell that has the text with this index.
std::string TextCell(unsigned row, unsigned column, std::uint32_t index) {
    return U16(row) + U16(column) + U16(0) + U32(index);
}

// Enough texts for the index to grow several times.
TEST_F(WorkbookStreamTest, ThousandsOfTextsKeepTheirIndices) {
    constexpr unsigned kTexts = 3000;
    for (unsigned i = 0; i < 2 * kTexts; ++i)
        First().At(i, 0)->SetText("text " + std::to_string(i * 7 % kTexts));
    const auto cells = Cells();
    for (unsigned i = 0; i < 2 * kTexts; ++i)
        EXPECT_EQ(cells.at(i), TextCell(i, 0, i % kTexts));
    EXPECT_EQ(Table().substr(0, 8), U32(2 * kTexts) + U32(kTexts));
    EXPECT_EQ(Table().substr(8, 3 + 6 + 3 + 6), U16(6) + U8(0) + "text 0" + U16(6) + U8(0) + "text 7");
}

TEST_F(WorkbookStreamTest, ManyTextsTakeLinearTime) {
    EXPECT_TRUE(TakesLinearTime(8000, [](std::size_t size) {
        const auto count = static_cast<std::uint32_t>(size);
        Document document;
        document.CreateSheets(1);
        for (std::uint32_t i = 0; i < count; ++i)
            document.FindSheet("Sheet1")->At(i, 0)->SetText("text " + std::to_string(i));
        EXPECT_GT(document.Stream().Size(), count);
    }));
}

}  // namespace
