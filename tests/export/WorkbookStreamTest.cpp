#include "vxfileio/export/WorkbookStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/export/biff/RecordBytes.h"
#include "tests/support/LinearTime.h"
#include "vxfileio/export/Document.h"

namespace {

using YExcel::Document;
using YExcel::Sheet;

constexpr std::uint32_t kBof = 0x0809;
constexpr std::uint32_t kEof = 0x000A;
constexpr std::uint32_t kBoundSheet = 0x0085;
constexpr std::uint32_t kSst = 0x00FC;
constexpr std::uint32_t kIndex = 0x020B;
constexpr std::uint32_t kDimensions = 0x0200;
constexpr std::uint32_t kRow = 0x0208;
constexpr std::uint32_t kDbCell = 0x00D7;
constexpr std::uint32_t kWindow2 = 0x023E;
constexpr std::uint32_t kRk = 0x027E;
constexpr std::uint32_t kMulRk = 0x00BD;
constexpr std::uint32_t kNumber = 0x0203;
constexpr std::uint32_t kLabelSst = 0x00FD;

/// A workbook with "Sheet1", and the contents of its stream.
class WorkbookStreamTest : public testing::Test {
 protected:
    WorkbookStreamTest() { m_document.CreateSheets(1); }

    Sheet& First() { return *m_document.FindSheet("Sheet1"); }
    std::string Stream() const { return StreamOf(m_document); }

    /// Returns the bodies of all records with this code, in order.
    std::vector<std::string> Bodies(std::uint32_t code) const {
        std::vector<std::string> bodies;
        for (const CFoundRecord& record : RecordsOf(Stream()))
            if (record.code == code) bodies.push_back(record.body);
        return bodies;
    }
    std::string Body(std::uint32_t code) const { return Bodies(code).at(0); }

    /// Returns the codes and bodies of the cell records of all sheets.
    std::vector<std::pair<std::uint32_t, std::string>> Cells() const {
        std::vector<std::pair<std::uint32_t, std::string>> cells;
        for (const CFoundRecord& record : RecordsOf(Stream()))
            if (record.code == kRk || record.code == kMulRk || record.code == kNumber || record.code == kLabelSst)
                cells.emplace_back(record.code, record.body);
        return cells;
    }

    Document m_document;
};

std::string Place(unsigned row, unsigned column) { return U16(row) + U16(column) + U16(0); }
std::string Item(std::uint32_t word) { return U16(0) + U32(word); }

std::string Repeated(int count, const std::string& bytes) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += bytes;
    return all;
}

TEST_F(WorkbookStreamTest, EmptySheetByteForByte) {
    m_document.RenameSheet("Sheet1", "Results");
    const std::string version = U16(0x0600);
    const std::string build = U16(6560) + U16(1997) + U32(0x0000C0C9) + U32(0x00000306);
    const std::string font =
        U16(0x0031) + U16(26) + U16(200) + U16(0) + U16(0x7FFF) + U16(400) + Zeros(6) + U8(5) + U8(1) + Units(u"Arial");
    const std::string format = U16(0x00E0) + U16(20) + Zeros(4) + U16(0xFFF5) + U8(0x20) + Zeros(11) + U16(0x20C0);
    const std::string style = U16(0x0293) + U16(4) + U16(0x8000) + U8(0) + U8(0xFF);
    const std::string globals = U16(kBof) + U16(16) + version + U16(5) + build +            //
                                U16(0x003D) + U16(18) + U16(120) + U16(120) + U16(15135) +  // the window
                                U16(9300) + U16(0x0038) + Zeros(4) + U16(1) + U16(600) +    //
                                Repeated(4, font) + Repeated(21, format) + Repeated(6, style) + U16(kBoundSheet) +
                                U16(15) + U32(749) + Zeros(2) + U8(7) + U8(0) + "Results" + U16(kSst) + U16(8) +
                                Zeros(8) +  //
                                U16(kEof) + U16(0);
    const std::string sheet = U16(kBof) + U16(16) + version + U16(0x10) + build +                       //
                              U16(kIndex) + U16(20) + Zeros(20) +                                       //
                              U16(kDimensions) + U16(14) + Zeros(14) +                                  //
                              U16(kWindow2) + U16(18) + U16(0x06B6) + Zeros(4) + U16(64) + Zeros(10) +  //
                              U16(kEof) + U16(0);
    EXPECT_EQ(globals.size(), 749U);
    EXPECT_EQ(sheet.size(), 88U);
    EXPECT_EQ(Stream(), globals + sheet);
    EXPECT_EQ(Stream(), Stream());
}

TEST_F(WorkbookStreamTest, NeighboursWithTheSameShortFormShareARecord) {
    First().At(2, 1)->SetDouble(1.5);
    First().At(2, 2)->SetDouble(2.5);
    First().At(2, 3)->SetDouble(3.25);
    First().At(3, 0)->SetDouble(1.5);
    First().At(3, 1)->SetDouble(153.2738);
    First().At(3, 2)->SetDouble(153.2738);
    First().At(3, 3)->SetDouble(2.5);
    First().At(3, 5)->SetDouble(2.5);  // after a gap
    First().At(4, 0)->SetInteger(-1);
    First().At(4, 1)->SetInteger(2);
    First().At(4, 2)->SetDouble(2.0);         // a whole number, but stored as a double
    First().At(4, 3)->SetInteger(536870912);  // one bit too many
    First().At(4, 4)->SetInteger(3);
    const std::vector<std::pair<std::uint32_t, std::string>> expected = {
        {kMulRk, U16(2) + U16(1) + Item(0x4062C001) + Item(0x406F4001) + Item(0x40745001) + U16(3)},
        {kRk, Place(3, 0) + U32(0x4062C001)},
        {kNumber, Place(3, 1) + U64(0x406328C2F837B4A2)},
        {kNumber, Place(3, 2) + U64(0x406328C2F837B4A2)},
        {kRk, Place(3, 3) + U32(0x406F4001)},
        {kRk, Place(3, 5) + U32(0x406F4001)},
        {kMulRk, U16(4) + U16(0) + Item(0xFFFFFFFE) + Item(0x0000000A) + U16(1)},
        {kRk, Place(4, 2) + U32(0x40000000)},
        {kMulRk, U16(4) + U16(3) + Item(0x80000002) + Item(0x0000000E) + U16(4)}};
    EXPECT_EQ(Cells(), expected);
}

TEST_F(WorkbookStreamTest, RunsEndWithTheirRow) {
    for (unsigned column = 0; column < 256; ++column)
        First().At(0, column)->SetInteger(0);
    First().At(1, 0)->SetInteger(0);
    First().At(1, 254)->SetInteger(0);
    First().At(2, 0)->SetDouble(std::numeric_limits<double>::infinity());
    const std::vector<std::pair<std::uint32_t, std::string>> expected = {
        {kMulRk, U16(0) + U16(0) + Repeated(256, Item(2)) + U16(255)},
        {kRk, Place(1, 0) + U32(2)},
        {kRk, Place(1, 254) + U32(2)},
        {kNumber, Place(2, 0) + U64(0x7FF0000000000000)}};
    EXPECT_EQ(Cells(), expected);
    EXPECT_EQ(Bodies(kRow).at(1), U16(1) + U16(0) + U16(256) + U16(255) + Zeros(8));
}

TEST_F(WorkbookStreamTest, AWorkbookHasEachTextOnce) {
    m_document.AddSheet("Averages");
    Sheet& second = *m_document.FindSheet("Averages");
    second.At(0, 0)->SetText("both");
    First().At(5, 0)->SetText("both");
    First().At(5, 1)->SetWideText(u"both");
    First().At(5, 2)->SetText("");
    First().At(4, 3)->SetText("used first");
    second.At(0, 1)->SetWideText(u"both");
    const std::vector<std::pair<std::uint32_t, std::string>> expected = {{kLabelSst, Place(4, 3) + U32(0)},
                                                                         {kLabelSst, Place(5, 0) + U32(1)},
                                                                         {kLabelSst, Place(5, 1) + U32(2)},
                                                                         {kLabelSst, Place(0, 0) + U32(1)},
                                                                         {kLabelSst, Place(0, 1) + U32(2)}};
    EXPECT_EQ(Cells(), expected);
    EXPECT_EQ(Body(kSst), U32(5) + U32(3) +                      // total, unique
                              U16(10) + U8(0) + "used first" +   //
                              U16(4) + U8(0) + "both" +          //
                              U16(4) + U8(1) + Units(u"both"));  //
    EXPECT_EQ(Stream(), Stream());
}

// Enough texts for the index to grow several times.
TEST_F(WorkbookStreamTest, ThousandsOfTextsKeepTheirIndices) {
    constexpr unsigned kTexts = 3000;
    for (unsigned i = 0; i < 2 * kTexts; ++i)
        First().At(i, 0)->SetText("text " + std::to_string(i * 7 % kTexts));
    const auto cells = Cells();
    for (unsigned i = 0; i < 2 * kTexts; ++i)
        EXPECT_EQ(cells.at(i).second, Place(i, 0) + U32(i % kTexts));
    EXPECT_EQ(Body(kSst).substr(0, 8), U32(2 * kTexts) + U32(kTexts));
    EXPECT_EQ(Body(kSst).substr(8, 3 + 6 + 3 + 6), U16(6) + U8(0) + "text 0" + U16(6) + U8(0) + "text 7");
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

// Rows 2, 3 and 33 have cells. Row 34 and column 4 were requested but stay empty.
TEST_F(WorkbookStreamTest, RowBlocksHaveTheOffsetsOfTheirCells) {
    First().At(2, 3)->SetDouble(153.2738);
    First().At(2, 1)->SetText("text");
    First().At(3, 0)->SetDouble(1.5);
    First().At(31, 0);
    First().At(33, 2)->SetDouble(1.5);
    First().At(34, 4);
    EXPECT_EQ(Body(kDimensions), U32(2) + U32(35) + U16(1) + U16(5) + U16(0));
    const std::string rest = U16(0) + U16(5) + U16(255) + Zeros(8);
    EXPECT_EQ(Bodies(kRow), (std::vector<std::string>{U16(2) + rest, U16(3) + rest, U16(33) + rest}));
    // Two rows of 20 bytes, then 14 + 18 bytes of cells, then 14.
    EXPECT_EQ(Bodies(kDbCell), (std::vector<std::string>{U32(86) + U16(20) + U16(32), U32(34) + U16(0)}));
    // The globals have 748 bytes and one string of 7. Then come 20 + 28 + 18 bytes before the first row.
    const std::uint32_t first = 748 + 7 + 66 + 86;
    EXPECT_EQ(Body(kIndex), U32(0) + U32(2) + U32(35) + U32(0) + U32(first) + U32(first + 12 + 34));
}

TEST_F(WorkbookStreamTest, EmptyRowBlocksHaveAnEnd) {
    First().At(64, 1);
    EXPECT_EQ(Body(kDimensions), U32(0) + U32(65) + U16(0) + U16(2) + U16(0));
    EXPECT_EQ(Bodies(kDbCell), std::vector<std::string>(3, U32(0)));
    EXPECT_EQ(Bodies(kRow).size(), 0U);
    // 748 bytes of globals, then 20 + 32 + 18.
    EXPECT_EQ(Body(kIndex), U32(0) + U32(0) + U32(65) + U32(0) + U32(818) + U32(826) + U32(834));
    First().At(63, 1)->SetText("x");
    EXPECT_EQ(Bodies(kDbCell), (std::vector<std::string>{U32(0), U32(34) + U16(0), U32(0)}));
    EXPECT_EQ(Body(kIndex).substr(0, 16), U32(0) + U32(63) + U32(65) + U32(0));
}

// The first column is that of the first row, even if other rows begin before it.
TEST_F(WorkbookStreamTest, FarCornersOfTheSheet) {
    First().At(65534, 7)->SetInteger(1);
    First().At(65535, 255)->SetInteger(2);
    First().At(65535, 0)->SetInteger(3);
    EXPECT_EQ(Body(kDimensions), U32(65534) + U32(65536) + U16(7) + U16(256) + U16(0));
    EXPECT_EQ(Body(kIndex).size(), 16U + 4 * 2048);
    EXPECT_EQ(Bodies(kDbCell).size(), 2048U);
    const std::vector<std::pair<std::uint32_t, std::string>> expected = {
        {kRk, Place(65534, 7) + U32(6)}, {kRk, Place(65535, 0) + U32(14)}, {kRk, Place(65535, 255) + U32(10)}};
    EXPECT_EQ(Cells(), expected);
}

TEST_F(WorkbookStreamTest, OffsetsOfSheetsAndRowBlocksAreCorrect) {
    m_document.CreateSheets(3);
    for (unsigned row = 0; row < 100; ++row) {
        m_document.FindSheet("Sheet1")->At(row, row % 7)->SetDouble(row * 0.3);
        m_document.FindSheet("Sheet3")->At(row * 3, 1)->SetText("label " + std::to_string(row));
    }
    const std::string stream = Stream();
    const auto records = RecordsOf(stream);
    std::vector<std::uint32_t> begins;
    std::vector<std::uint32_t> ends;  // of row blocks
    std::vector<std::uint32_t> options;
    std::string toldBegins;
    std::string toldEnds;
    for (const CFoundRecord& record : records) {
        if (record.code == kBof && record.position != 0) begins.push_back(static_cast<std::uint32_t>(record.position));
        if (record.code == kDbCell) ends.push_back(static_cast<std::uint32_t>(record.position));
        if (record.code == kWindow2) options.push_back(NumberAt(record.body, 0, 2));
        if (record.code == kBoundSheet) toldBegins += record.body.substr(0, 4) + record.body.substr(8);
        if (record.code == kIndex) toldEnds += record.body.substr(16);
    }
    ASSERT_EQ(begins.size(), 3U);
    EXPECT_EQ(toldBegins, U32(begins[0]) + "Sheet1" + U32(begins[1]) + "Sheet2" + U32(begins[2]) + "Sheet3");
    EXPECT_EQ(options, (std::vector<std::uint32_t>{0x06B6, 0x04B6, 0x04B6}));
    ASSERT_EQ(ends.size(), 4U + 10U);
    ends.insert(ends.begin() + 4, 0);  // even a sheet without rows lists one block
    std::string expectedEnds;
    for (const std::uint32_t end : ends)
        expectedEnds += U32(end);
    EXPECT_EQ(toldEnds, expectedEnds);
}

}  // namespace
