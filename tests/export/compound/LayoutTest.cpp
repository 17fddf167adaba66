#include "tests/export/compound/StorageTest.h"

namespace {

using LayoutTest = StorageTest;

/// Returns the marks of all sectors of a new file with one stream. Its sectors ascend. Those of the FAT are in between,
/// at the multiples of 128. Once the header's list of 109 is full, each DIFAT sector follows the first of the 127 FAT
/// sectors that it lists. The mini FAT follows the first sector of a short stream.
Numbers ExpectedMarks(std::size_t size) {
    Numbers marks = {kFat, kEnd};
    std::size_t last = 0;  // of the stream
    for (std::size_t left = (size + kSector - 1) / kSector; left > 0; --left) {
        if (marks.size() % 128 == 0) {
            marks.push_back(kFat);
            const std::size_t tables = marks.size() / 128 + 1;
            if (tables >= 110 && (tables - 110) % 127 == 0) marks.push_back(kDifat);
        }
        if (last > 0) marks[last] = static_cast<std::uint32_t>(marks.size());
        last = marks.size();
        marks.push_back(kEnd);
        if (size < 4096 && last == 2) marks.push_back(kEnd);
    }
    return marks;
}

TEST_F(LayoutTest, StreamsOfEverySizeHaveTheExpectedLayout) {
    constexpr std::size_t kFullFat = 126 * kSector;                  // sectors 2 to 127
    constexpr std::size_t kFullHeader = 7087104;                     // 109 FAT sectors
    constexpr std::size_t kFullDifat = (363 * 128 - 366) * kSector;  // 363 FAT sectors, two of the DIFAT, the directory
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
            const std::string bytes = Bytes();
            const CompoundReader reader(bytes);
            EXPECT_TRUE(reader.streams.at("Workbook") == content) << size;
            const Numbers expected = ExpectedMarks(size);
            EXPECT_EQ(Marks(reader, 0, expected.size() - 1), expected) << size;
            EXPECT_EQ(bytes.size(), (1 + expected.size()) * kSector);
            m_storage.Create(m_path);
            m_storage.MakeFile("Workbook");
            EXPECT_EQ(WriteInPieces("Workbook", content, 64 * kSector, size), 1);
            EXPECT_TRUE(Bytes() == bytes) << size << " in pieces";
        }
    }
}

TEST_F(LayoutTest, NothingOfAnOlderFileSurvives) {
    m_storage.Close();
    WriteAll(m_path, std::string(100000, 'o'));
    for (const std::string content : {"new", "newer"}) {  // the second time, the older file is that of the storage
        m_storage.Create(m_path);
        Add("Workbook", content);
        EXPECT_EQ(Read().streams, (std::map<std::string, std::string>{{"Workbook", content}}));
        EXPECT_EQ(Bytes().size(), (1 + ExpectedMarks(content.size()).size()) * kSector);
    }
    m_storage.Close();
    EXPECT_FALSE(m_storage.IsOpen());
}

}  // namespace
