#include "tests/export/compound/StorageTest.h"

namespace {

using RewriteTest = StorageTest;

TEST_F(RewriteTest, SectorsThatLongStreamsFreeAreReused) {
    Add("a", Pattern(10 * kSector));
    EXPECT_EQ(Write("a", Pattern(8 * kSector + 1, 2)), 1);
    EXPECT_EQ(Marks(Read(), 2, 12), (Numbers{3, 4, 5, 6, 7, 8, 9, 10, kEnd, kFree, kFree}));
    Add("b", Pattern(8 * kSector));
    EXPECT_EQ(Write("a", Pattern(8 * kSector, 3)), 1);
    EXPECT_EQ(Write("b", Pattern(10 * kSector, 4)), 1);
    CompoundReader reader = Read();
    EXPECT_EQ(Marks(reader, 2, 10), (Numbers{3, 4, 5, 6, 7, 8, 9, kEnd, 19}));
    EXPECT_EQ(Marks(reader, 11, 20), (Numbers{12, 13, 14, 15, 16, 17, 18, 10, kEnd, kFree}));
    EXPECT_EQ(reader.streams.at("a"), Pattern(8 * kSector, 3));
    EXPECT_EQ(reader.streams.at("b"), Pattern(10 * kSector, 4));

    EXPECT_EQ(Write("a", ""), 1);
    reader = Read();
    EXPECT_EQ(Marks(reader, 2, 10), (Numbers{kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree, 19}));
    EXPECT_EQ(reader.entries.at(1).start, kEnd);
    EXPECT_EQ(reader.entries.at(1).size, 0U);
}

TEST_F(RewriteTest, ShortStreamsFreeMiniSectorsAndShortenTheMiniStream) {
    const auto rootSize = [this] { return Read().entries.at(0).size; };
    Add("a", Pattern(130));    // mini sectors 0, 1, 2
    Add("b", Pattern(64, 2));  // 3
    EXPECT_EQ(Write("a", Pattern(64, 3)), 1);
    EXPECT_EQ(rootSize(), 4U * 64);
    EXPECT_EQ(Read().MiniSectorsInUse(), 2U);
    EXPECT_EQ(Write("a", Pattern(200, 4)), 1);  // 0, 1, 2, 4
    EXPECT_EQ(Write("b", Pattern(60, 5)), 1);
    const CompoundReader reader = Read();
    EXPECT_EQ(rootSize(), 5U * 64);
    EXPECT_EQ(reader.streams.at("a"), Pattern(200, 4));
    EXPECT_EQ(reader.streams.at("b"), Pattern(60, 5));
    EXPECT_EQ(Write("a", ""), 1);
    EXPECT_EQ(rootSize(), 4U * 64);
    EXPECT_EQ(Write("b", ""), 1);
    EXPECT_EQ(rootSize(), 0U);
    EXPECT_EQ(Read().entries.at(0).start, kEnd);
    EXPECT_EQ(Marks(Read(), 2, 3), (Numbers{kFree, kEnd}));  // the mini FAT stays
}

// The declared size limits what is written, however much arrives: no byte after it, and no sector of another stream.
TEST_F(RewriteTest, PiecesFollowAChainBackwardsAndEndAtTheDeclaredSize) {
    Add("a", Pattern(10 * kSector));
    Add("b", Pattern(10 * kSector));
    EXPECT_EQ(Write("b", Pattern(20 * kSector)), 1);
    EXPECT_EQ(Write("a", ""), 1);
    EXPECT_EQ(Write("b", Pattern(200 * kSector)), 1);  // continues in the sectors of "a", then after its own
    Add("c", Pattern(8 * kSector));
    for (const unsigned sectors : {1U, 3U, 64U, 300U}) {
        const std::string content = Pattern(200 * kSector, sectors);
        for (const std::size_t size : {198 * kSector, 197 * kSector + 1, 200 * kSector}) {
            EXPECT_EQ(WriteInPieces("b", content, sectors * kSector, size), 1);
            EXPECT_EQ(Read().streams.at("b"), content.substr(0, size));
        }
    }
    EXPECT_EQ(WriteInPieces("c", Pattern(9000), kSector, 4000), 1);
    EXPECT_EQ(Read().streams.at("c"), Pattern(9000).substr(0, 4000));
    EXPECT_TRUE(m_storage.IsComplete());
    EXPECT_EQ(WriteInPieces("missing", "x", kSector, 1), -4);
}

TEST_F(RewriteTest, StreamsStayWholeForAnyOrderOfSizes) {
    constexpr std::array<std::size_t, 12> kSizes = {0, 1, 64, 65, 700, 4095, 4096, 4097, 9000, 64512, 65025, 150000};
    auto random = [state = 1U]() mutable { return (state = state * 1664525U + 1013904223U) >> 16U; };
    std::map<std::string, std::string> expected;
    for (const std::string name : {"a", "b", "c", "d", "e"})
        Add(name, expected[name]);
    for (unsigned i = 0; i < 300; ++i) {
        const std::string name(1, static_cast<char>('a' + random() % 5));
        expected[name] = Pattern(kSizes.at(random() % kSizes.size()), i);
        ASSERT_EQ(Write(name, expected[name]), 1);
        const CompoundReader reader = Read();
        ASSERT_TRUE(reader.streams == expected) << i;
    }
    for (auto& [name, content] : expected)
        Write(name, content = "");
    const CompoundReader reader = Read();
    EXPECT_EQ(reader.streams, expected);
    const std::string bytes = Bytes();
    EXPECT_EQ(reader.SectorsInUse(), U32(bytes, 44) + U32(bytes, 64) + 2U);  // FAT, mini FAT, directory
}

TEST_F(RewriteTest, ShrinkingAStreamFreesItsSectorsInAFileWithDifat) {
    Add("long", Pattern(7200000));
    Add("short", "short");
    EXPECT_EQ(Write("long", Pattern(5000, 2)), 1);
    const CompoundReader reader = Read();
    EXPECT_EQ(reader.streams.at("long"), Pattern(5000, 2));
    EXPECT_EQ(reader.SectorsInUse(), 111U + 1 + 1 + 10 + 2);  // FAT, DIFAT, directory, long, mini stream and FAT
    EXPECT_EQ(Write("long", Pattern(16000000, 3)), 1);
    EXPECT_TRUE(Read().streams.at("long") == Pattern(16000000, 3));
    EXPECT_EQ(U32(Bytes(), 72), 2U);
}

}  // namespace
