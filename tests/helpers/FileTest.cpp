#include "vxfileio/helpers/File.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "tests/support/TempFolder.h"
#include "vxfileio/helpers/LittleEndian.h"

namespace {

using namespace vxfileio::helpers;

CBytes AsBytes(const std::string& text) { return std::as_bytes(std::span(text)); }
CMutableBytes AsRoom(std::string& text) { return std::as_writable_bytes(std::span(text)); }

class FileTest : public testing::Test {
 protected:
    CTempFolder m_folder;
    std::string m_path = m_folder.Path("file");
    CFile m_file;
};

TEST_F(FileTest, GatheredWritesKeepTheirOrder) {
    ASSERT_TRUE(m_file.Create(m_path));
    const std::string a = "abc";
    const std::string nothing;
    const std::string b = "defgh";
    EXPECT_TRUE(m_file.Append({AsBytes(a), AsBytes(nothing), AsBytes(b)}));
    EXPECT_TRUE(m_file.Append({AsBytes(a)}));
    EXPECT_TRUE(m_file.WriteAt(2, {AsBytes(std::string("XY")), AsBytes(std::string("Z"))}));
    EXPECT_EQ(m_file.End(), 11);
    EXPECT_EQ(m_file.Size(), 11);
    EXPECT_EQ(ReadAll(m_path), "abXYZfghabc");

    CFile reader;  // while the writer has it open
    ASSERT_TRUE(reader.OpenForReading(m_path));
    std::string room(13, '-');
    EXPECT_EQ(reader.ReadUpTo(1, AsRoom(room)), 10U);
    for (const std::int64_t nowhere : {std::int64_t{11}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(reader.ReadUpTo(nowhere, AsRoom(room)), 0U);
    EXPECT_EQ(room, "bXYZfghabc---");
}

TEST_F(FileTest, ManyBuffersAreWrittenInOrder) {
    ASSERT_TRUE(m_file.Create(m_path));
    const std::string all = "abcdefghi";
    const auto part = [&](std::size_t at) { return AsBytes(all).subspan(at, 1); };
    EXPECT_TRUE(m_file.Append({part(0), part(1), {}, part(2), part(3), part(4), part(5), part(6), {}, part(7)}));
    EXPECT_EQ(m_file.End(), 8);
    EXPECT_TRUE(m_file.WriteAt(1, {part(8), part(7), part(6), part(5), part(4)}));
    EXPECT_EQ(ReadAll(m_path), "aihgfegh");
}

TEST_F(FileTest, AnExactReadIsAllOrNothing) {
    WriteAll(m_path, "abcdef");
    ASSERT_TRUE(m_file.OpenForReading(m_path));
    std::string room(4, '-');
    EXPECT_TRUE(m_file.ReadExactly(2, AsRoom(room)));
    EXPECT_EQ(room, "cdef");
    EXPECT_FALSE(m_file.ReadExactly(3, AsRoom(room)));
    EXPECT_FALSE(m_file.ReadExactly(-1, AsRoom(room)));
}

TEST_F(FileTest, UpdatedFilesKeepTheirContentAndGrow) {
    EXPECT_FALSE(m_file.OpenForUpdate(m_path));
    EXPECT_FALSE(m_file.OpenForUpdate(m_folder.Path("")));
    WriteAll(m_path, "abcdef");
    ASSERT_TRUE(m_file.OpenForUpdate(m_path));
    std::string room(3, '-');
    EXPECT_EQ(m_file.ReadUpTo(1, AsRoom(room)), 3U);
    EXPECT_EQ(room, "bcd");
    EXPECT_TRUE(m_file.WriteAt(2, {AsBytes(std::string("XY"))}));
    EXPECT_TRUE(m_file.Append({AsBytes(std::string("gh"))}));
    EXPECT_EQ(m_file.End(), 8);
    EXPECT_EQ(ReadAll(m_path), "abXYefgh");
}

TEST_F(FileTest, ClosedFilesAndFoldersCannotBeReadOrWritten) {
    std::string room(4, '-');
    EXPECT_EQ(m_file.ReadUpTo(0, AsRoom(room)), 0U);
    EXPECT_FALSE(m_file.WriteAt(0, {AsBytes(room)}));
    EXPECT_FALSE(m_file.Append({AsBytes(room)}));
    EXPECT_EQ(m_file.Size(), 0);
    EXPECT_TRUE(m_file.Close());
    EXPECT_FALSE(m_file.OpenForReading(m_path));
    EXPECT_FALSE(m_file.OpenForReading(m_folder.Path("")));
    EXPECT_FALSE(m_file.Create(m_folder.Path("")));
    EXPECT_FALSE(m_file.IsOpen());
}

#if defined(__linux__)
TEST_F(FileTest, ReopeningLeaksNoHandle) {
    const auto handles = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = handles();
    for (const auto open : {&CFile::Create, &CFile::OpenForReading, &CFile::OpenForUpdate, &CFile::OpenForWriting}) {
        EXPECT_TRUE((m_file.*open)(m_path) && (m_file.*open)(m_path));
        EXPECT_EQ(handles(), before + 1);
    }
}
#endif

TEST_F(FileTest, OffsetsBeyond4GiBWork) {
    constexpr std::int64_t kFar = (std::int64_t{5} << 30) + 7;
    ASSERT_TRUE(m_file.Create(m_path));
    if (!m_file.WriteAt(kFar, {AsBytes(std::string("far"))})) GTEST_SKIP() << "no space for a file of 5 GiB";
    EXPECT_TRUE(m_file.WriteAt(7, {AsBytes(std::string("near"))}));
    CFile reader;
    ASSERT_TRUE(reader.OpenForReading(m_path));
    EXPECT_EQ(reader.Size(), kFar + 3);
    std::string room(8, '-');
    EXPECT_EQ(reader.ReadUpTo(kFar, AsRoom(room)), 3U);
    EXPECT_EQ(room, "far-----");
    EXPECT_EQ(reader.ReadUpTo(7, AsRoom(room)), 8U);
    EXPECT_EQ(room, std::string("near\0\0\0\0", 8));
}

TEST(LittleEndianTest, LeastSignificantByteComesFirstAtAnyAlignment) {
    std::array<std::byte, 9> bytes{};
    StoreLE64(&bytes[1], 0x8877665544332211U);
    for (std::size_t i = 1; i < bytes.size(); ++i)
        EXPECT_EQ(std::to_integer<unsigned>(bytes[i]), 0x11U * i);
    EXPECT_EQ(LoadLE64(&bytes[1]), 0x8877665544332211U);
    EXPECT_EQ(LoadLE32(&bytes[3]), 0x66554433U);
    EXPECT_EQ(LoadLE16(&bytes[7]), 0x8877U);
    StoreLE32(&bytes[0], 0xA1B2C3D4U);
    StoreLE16(&bytes[5], 0xE5F6U);
    EXPECT_EQ(LoadLE64(&bytes[1]), 0x8877E5F644A1B2C3U);
}

}  // namespace
