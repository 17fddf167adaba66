#include "tests/export/compound/ExpectedFile.h"
#include "tests/export/compound/StorageTest.h"

namespace {

using LayoutTest = StorageTest;

/// The number of the first different byte and both bytes around it, or nothing: whole files would fill the screen.
std::string Difference(const std::string& is, const std::string& expected) {
    if (is == expected) return "";
    const auto at = std::mismatch(is.begin(), is.end(), expected.begin(), expected.end()).first - is.begin();
    return "sizes " + std::to_string(is.size()) + " and " + std::to_string(expected.size()) + ", different in block " +
           std::to_string(at / 512) + " at " + std::to_string(at % 512);
}

/// Bytes from their digits, two each; a dot is a zero byte, spaces don't count.
std::string Hex(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] == ' ') continue;
        bytes += digits[i] == '.' ? '\0' : static_cast<char>(std::stoi(digits.substr(i++, 2), nullptr, 16));
    }
    return bytes;
}

const std::string kNoSector = Hex("FF FF FF FF");

std::string Repeat(const std::string& bytes, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += bytes;
    return all;
}

// Every byte of the smallest files, written out.
TEST_F(LayoutTest, SmallestFilesToTheByte) {
    const std::string zeros16(16, '\0');
    const std::string start = Hex("D0 CF 11 E0 A1 B1 1A E1") + zeros16 + Hex("3B . 03 . FE FF 09 . 06 . . . . . . .") +
                              Hex(". . . .  01 . . .  01 . . .  . . . .  . 10 . .");  // FAT 1, directory at 1, 4096
    const std::string difat = Hex("FE FF FF FF . . . .  . . . .") + Repeat(kNoSector, 108);
    const std::string rootName = Hex("52 . 6F . 6F . 74 . 20 . 45 . 6E . 74 . 72 . 79 .") + std::string(44, '\0');
    const std::string unlinked = kNoSector + kNoSector;
    const std::string emptyRoot = rootName + Hex("16 . 05 01") + unlinked + kNoSector + std::string(36, '\0') +
                                  Hex("FE FF FF FF . . . . . . . .");
    EXPECT_EQ(Difference(Bytes(), start + Hex("FE FF FF FF . . . .") + difat +                   // header
                                      Hex("FD FF FF FF FE FF FF FF") + Repeat(kNoSector, 126) +  // FAT
                                      emptyRoot + std::string(384, '\0')),                       // directory
              "");

    Add("Workbook", "x");
    const std::string root = rootName + Hex("16 . 05 01") + unlinked + Hex("01 . . .") + std::string(36, '\0') +
                             Hex("02 . . .  40 . . .  . . . .");
    const std::string workbook = Hex("57 . 6F . 72 . 6B . 62 . 6F . 6F . 6B .") + std::string(48, '\0') +
                                 Hex("12 . 02 01") + unlinked + kNoSector + std::string(36, '\0') +
                                 Hex(". . . .  01 . . .  . . . .");
    const std::string fat = Hex("FD FF FF FF FE FF FF FF FE FF FF FF FE FF FF FF") + Repeat(kNoSector, 124);
    EXPECT_EQ(Difference(Bytes(), start + Hex("03 . . .  01 . . .") + difat + fat + root + workbook +
                                      std::string(256, '\0') + "x" + std::string(511, '\0') +  // mini stream
                                      Hex("FE FF FF FF") + Repeat(kNoSector, 127)),            // mini FAT
              "");
}

TEST_F(LayoutTest, StreamsOfEverySizeStandWhereTheyShould) {
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

TEST_F(LayoutTest, HeaderCountsFatAndDifatSectors) {
    m_storage.MakeFile("Workbook");
    Write("Workbook", Pattern(127 * kSector));
    std::string bytes = Bytes();
    EXPECT_EQ(U32(bytes, 44), 2U);
    EXPECT_EQ(U32(bytes, 80), 128U);
    EXPECT_EQ(bytes.substr(130 * kSector, 512), Pattern(127 * kSector).substr(126 * kSector));  // sector 129

    Write("Workbook", Pattern(7087105));
    bytes = Bytes();
    EXPECT_EQ(U32(bytes, 44), 110U);
    EXPECT_EQ(U32(bytes, 68), 13953U);
    EXPECT_EQ(U32(bytes, 72), 1U);
    EXPECT_EQ(U32(bytes, 76 + 4 * 108), 13824U);
    EXPECT_EQ(U32(bytes, 13954 * kSector), 13952U);
    EXPECT_EQ(U32(bytes, 13954 * kSector + 4), 0xFFFFFFFFU);
    EXPECT_EQ(U32(bytes, 13954 * kSector + 508), 0xFFFFFFFEU);
    EXPECT_EQ(bytes.size(), 13956 * kSector);
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
