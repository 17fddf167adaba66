#include "vxfileio/export/compound/SectorFile.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/TempFolder.h"

using vxfileio::compound::SectorFile;

namespace {

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

}  // namespace
