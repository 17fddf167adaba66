#include "vxfileio/helpers/File.h"

#include <gtest/gtest.h>

#include <array>

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
