#include "tests/export/compound/ExpectedFile.h"
#include "tests/export/compound/StorageTest.h"

namespace {

using LayoutTest = StorageTest;

/// Returns the offset of the first difference and both bytes there, or nothing: whole files would fill the screen.
std::string Difference(const std::string& is, const std::string& expected) {
    if (is == expected) return "";
    const auto at = std::mismatch(is.begin(), is.end(), expected.begin(), expected.end()).first - is.begin();
    return "sizes " + std::to_string(is.size()) + " and " + std::to_string(expected.size()) + ", different in block " +
           std::to_string(at / 512) + " at " + std::to_string(at % 512);
}

TEST_F(LayoutTest, StreamsOfEverySizeHaveTheExpectedLayout) {
    constexpr std::size_t kFullFat = 126 * kSector;                  // sectors 2 to 127
    constexpr std::size_t kFullHeader = 7087104;                     // 109 FAT sectors
    constexpr std::size_t kFullDifat = (236 * 128 - 238) * kSector;  // 236 FAT sectors, one of the DIFAT, the directory
    const std::vector<std::size_t> borders = {1,           64,
                                              512,         4032,
                                              4096,        4608,
                                              kFullFat,    kFullFat + 127 * kSector,
                                              kFullHeader, kFullHeader + 126 * kSector,
                                              kFullDifat};
    for (const std::size_t border : borders) {
        for (const std::size_t size : {border - 1, border, border + 1}) {
            m_storage.Create(m_path);
            const std::string content = Pattern(size);
            Add("Workbook", content);
            EXPECT_EQ(Difference(Bytes(), ExpectedWorkbookFile(content)), "") << size;
            EXPECT_TRUE(Read().streams.at("Workbook") == content) << size;
            m_storage.Create(m_path);
            m_storage.MakeFile("Workbook");
            EXPECT_EQ(WriteInPieces("Workbook", content, 64 * kSector, size), 1);
            EXPECT_EQ(Difference(Bytes(), ExpectedWorkbookFile(content)), "") << size << " in pieces";
        }
    }
}

TEST_F(LayoutTest, NothingOfAnOlderFileSurvives) {
    m_storage.Close();
    WriteAll(m_path, std::string(100000, 'o'));
    m_storage.Create(m_path);
    Add("Workbook", "new");
    EXPECT_EQ(Difference(Bytes(), ExpectedWorkbookFile("new")), "");
    m_storage.Create(m_path);  // of the storage itself
    Add("Workbook", "newer");
    m_storage.Close();
    EXPECT_FALSE(m_storage.IsOpen());
    EXPECT_EQ(Difference(Bytes(), ExpectedWorkbookFile("newer")), "");
}

}  // namespace
