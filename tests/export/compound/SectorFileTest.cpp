#include "vxfileio/export/compound/SectorFile.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "tests/support/TempFolder.h"
#include "vxfileio/export/compound/BlockWrites.h"

using vxfileio::compound::SectorFile;

namespace {

using vxfileio::compound::CBlockWrites;
using Block = std::array<std::byte, 512>;

Block BlockOf(char letter) {
    Block block{};
    block.fill(static_cast<std::byte>(letter));
    return block;
}

class SectorFileTest : public testing::Test {
 protected:
    /// Returns the first letter of each block.
    std::string Letters() const {
        const std::string bytes = ReadAll(m_path);
        std::string letters;
        for (std::size_t at = 0; at < bytes.size(); at += 512)
            letters += bytes.substr(at, 512) == std::string(512, bytes[at]) ? bytes[at] : '?';
        return letters;
    }

    void MakeBlocks(const std::string& letters) {
        ASSERT_TRUE(m_file.Create(m_path));
        for (std::uint32_t i = 0; i < letters.size(); ++i)
            ASSERT_TRUE(m_file.Write(i, BlockOf(letters[i])));
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("blocks");
    SectorFile m_file;
};

TEST_F(SectorFileTest, ModesAllowOnlyTheirOwnOperations) {
    EXPECT_FALSE(m_file.Open(m_path, 3));
    WriteAll(m_path, std::string(512, 'a') + std::string(188, 'b'));
    Block block{};
    EXPECT_FALSE(m_file.Open(m_path, 0));
    EXPECT_FALSE(m_file.IsOpen());
    EXPECT_FALSE(m_file.Open(m_folder.Path(""), 3));

    ASSERT_TRUE(m_file.Open(m_path, 1));
    EXPECT_EQ(m_file.ByteSize(), 700U);
    EXPECT_EQ(m_file.BlockCount(), 2U);
    EXPECT_TRUE(m_file.Read(0, block));
    EXPECT_EQ(block, BlockOf('a'));
    EXPECT_FALSE(m_file.Read(1, block));  // not a whole block
    EXPECT_FALSE(m_file.Read(2, block));
    EXPECT_FALSE(m_file.Write(0, block));
    EXPECT_FALSE(m_file.WriteRun(0, {}));

    ASSERT_TRUE(m_file.Open(m_path, 2));
    EXPECT_FALSE(m_file.Read(0, block));
    EXPECT_TRUE(m_file.Write(1, BlockOf('c')));
    EXPECT_EQ(Letters(), "ac");

    m_file.Close();
    EXPECT_EQ(m_file.ByteSize(), 0U);
    EXPECT_EQ(m_file.BlockCount(), 0U);
    EXPECT_FALSE(m_file.Read(0, block));
    EXPECT_FALSE(m_file.Write(0, block));
    EXPECT_EQ(Letters(), "ac");
    ASSERT_TRUE(m_file.Create(m_path));
    EXPECT_EQ(m_file.BlockCount(), 0U);
    EXPECT_EQ(Letters(), "");
}

TEST_F(SectorFileTest, WritesGrowTheFileByTheWrittenBlocks) {
    MakeBlocks("ab");
    EXPECT_TRUE(m_file.Write(0, BlockOf('c')));
    EXPECT_EQ(m_file.ByteSize(), 1024U);
    EXPECT_TRUE(m_file.Write(4, BlockOf('e')));
    EXPECT_EQ(m_file.BlockCount(), 5U);
    EXPECT_EQ(m_file.ByteSize(), 1536U);  // the gap isn't counted
    EXPECT_EQ(Letters(), std::string("cb\0\0e", 5));
}

TEST_F(SectorFileTest, GatheredBlocksArePaddedWithZeros) {
    MakeBlocks("abcdefgh");
    const std::string run = std::string(1024, 'x') + "y";
    CBlockWrites writes;
    writes.AddCopy(9, BlockOf('p'));
    writes.Add(2, std::as_bytes(std::span(run)));
    writes.AddCopy(1, BlockOf('q'));
    writes.Add(6, std::as_bytes(std::span(run)).first(512));
    for (std::uint32_t i = 0; i < 8; ++i)  // more than fit into one run
        writes.AddCopy(17 - i, BlockOf(static_cast<char>('A' + i)));
    EXPECT_TRUE(writes.WriteTo(m_file));
    EXPECT_EQ(m_file.BlockCount(), 18U);
    EXPECT_EQ(Letters(), "aqxx?fxh" + std::string(1, '\0') + "pHGFEDCBA");
    EXPECT_EQ(ReadAll(m_path).substr(2048, 512), "y" + std::string(511, '\0'));
    EXPECT_TRUE(m_file.WriteRun(99, {}));
    EXPECT_EQ(m_file.BlockCount(), 18U);
    m_file.Close();
    writes.AddCopy(0, BlockOf('z'));
    EXPECT_FALSE(writes.WriteTo(m_file));
}

TEST_F(SectorFileTest, LentBlocksAreWrittenWithThoseBeforeThem) {
    MakeBlocks("abcdefgh");
    CBlockWrites writes;
    writes.AddCopy(7, BlockOf('q'));
    writes.AddCopy(0, BlockOf('p'));
    EXPECT_TRUE(writes.WriteLentTo(m_file));
    EXPECT_EQ(Letters(), "abcdefgh");
    std::string lent = std::string(512, 'x') + std::string(512, 'y');
    writes.Add(2, std::as_bytes(std::span(lent)));
    writes.Add(5, std::as_bytes(std::span(lent)).first(512));
    EXPECT_TRUE(writes.WriteLentTo(m_file));
    EXPECT_EQ(Letters(), "pbxyexgh");
    lent.assign(1024, '?');
    EXPECT_TRUE(writes.WriteTo(m_file));
    EXPECT_EQ(Letters(), "pbxyexgq");
}

TEST_F(SectorFileTest, BlocksAreInsertedSwappedAndMoved) {
    MakeBlocks("abcd");
    EXPECT_TRUE(m_file.Swap(0, 3));
    EXPECT_EQ(Letters(), "dbca");
    EXPECT_TRUE(m_file.Move(0, 2));
    EXPECT_EQ(Letters(), "bcda");
    EXPECT_TRUE(m_file.Move(3, 1));
    EXPECT_EQ(Letters(), "bacd");
    EXPECT_TRUE(m_file.Insert(1, BlockOf('x')));
    EXPECT_EQ(Letters(), "bxacd");
    EXPECT_TRUE(m_file.Insert(5, BlockOf('y')));
    EXPECT_EQ(Letters(), "bxacdy");
    EXPECT_TRUE(m_file.Insert(7, BlockOf('z')));
    EXPECT_EQ(Letters(), std::string("bxacdy\0z", 8));
    EXPECT_FALSE(m_file.Swap(0, 8));
    EXPECT_FALSE(m_file.Swap(8, 0));
    EXPECT_FALSE(m_file.Move(8, 0));
    EXPECT_FALSE(m_file.Move(0, 8));
    EXPECT_EQ(Letters(), std::string("bxacdy\0z", 8));
}

TEST_F(SectorFileTest, WriteFailsIfTheFileCannotBeReopened) {
    MakeBlocks("a");
    const std::string newPath = m_folder.Path("elsewhere");
    std::filesystem::rename(m_path, newPath);
    EXPECT_FALSE(m_file.Write(1, BlockOf('b')));
    EXPECT_FALSE(m_file.IsOpen());
    EXPECT_EQ(ReadAll(newPath), std::string(512, 'a') + std::string(512, 'b'));
#if defined(__linux__)
    ASSERT_TRUE(m_file.Create("/dev/full"));
    EXPECT_TRUE(m_file.Write(0, BlockOf('a')));
#endif
}

}  // namespace
