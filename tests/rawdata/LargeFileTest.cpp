#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"

namespace {

/// Zero samples that take no memory until they are written to.
struct CZeroSamples {
    explicit CZeroSamples(std::size_t count)
        : samples(static_cast<std::uint16_t*>(std::calloc(count, sizeof(std::uint16_t))), &std::free) {}
    std::unique_ptr<std::uint16_t, decltype(&std::free)> samples;
};

// 2^31 samples of well 11 fill the first 4 GiB, so all later positions need more than 32 bits.
TEST(LargeFileTest, PositionsBeyond4GiBAreWrittenAndFollowed) {
    constexpr std::int64_t kSamples = std::int64_t{1} << 31;
    constexpr std::int64_t kSecond = 3650 + 300 + 2 * kSamples;
    const CTempFolder folder;
    if (std::filesystem::space(folder.Path("")).available < (std::uint64_t{5} << 30)) GTEST_SKIP() << "disk too small";
    const CZeroSamples zeros(kSamples);
    ASSERT_NE(zeros.samples, nullptr);
    const std::string path = folder.Path("large.vxd");
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr("PreQC"));
    writer.WriteData(11, 0, kSamples - 1, 1, zeros.samples.get());
    writer.WriteData(12, 0, 300, 100, kWell12.data());
    writer.WriteRecordingHdr(ExampleRecordingHdr("PostQC"));
    writer.WriteData(11, 0, 300, 100, kWell11.data());
    writer.WriteData(12, 0, 300, 100, kWell12.data());
    writer.Close();
    EXPECT_EQ(std::filesystem::file_size(path), static_cast<std::uintmax_t>(kSecond + 308 + 2460 + 2 * 308));

    CIRawDataReader& reader = *io.GetRawDataReader();
    reader.Open(path);
    EXPECT_EQ(reader.GetRecordingHdr("PreQC", 1)->FPosNextRecordingHdr, kSecond + 308);
    EXPECT_EQ(reader.GetRecordingHdr("PostQC", 1)->FPosRecordingData, kSecond + 308 + 2460);
    ASSERT_TRUE(reader.JumpToData("PostQC", 1));
    EXPECT_EQ(SegmentsOf(reader), "11[0..300]1,256,65535,32768 12[0..300]7,8,9,10 end");
    reader.SelectWellID(12);
    ASSERT_TRUE(reader.JumpToData("PreQC", 1));
    EXPECT_EQ(SegmentsOf(reader), "12[0..300]7,8,9,10 end");
}

}  // namespace
