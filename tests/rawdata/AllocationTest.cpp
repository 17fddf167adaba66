#include <gtest/gtest.h>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/TempFolder.h"

namespace {

// Positions, times and sizes of many digits, so that no short text hides an allocation.
TEST(AllocationTest, SteadyWritingAndReadingAllocateNothing) {
    constexpr std::int64_t kLate = 1'000'000'000'000'000'000;
    const CTempFolder folder;
    const std::string path = folder.Path("steady.vxd");
    const std::vector<std::uint16_t> samples(1000, 5);
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr());
    const std::size_t beforeWriting = AllocationCount();
    for (std::int32_t i = 0; i < 200; ++i)
        writer.WriteData(1'000'000'000 + i % 2, kLate, kLate + 999, 1, samples.data());
    EXPECT_EQ(AllocationCount(), beforeWriting);
    writer.Close();

    CIRawDataReader& reader = *io.GetRawDataReader();
    reader.Open(path);
    std::int32_t wellID = 0;
    std::int64_t time = 0;
    std::uint32_t size = 0;
    std::uint16_t* data = nullptr;
    for (const int pass : {0, 1, 2}) {
        reader.SelectWellID(pass == 0 ? -1 : 1'000'000'001);
        ASSERT_TRUE(reader.JumpToData("CompoundTest", 1));
        ASSERT_TRUE(reader.ReadSegment(wellID, time, time, size, data));
        const std::size_t beforeReading = AllocationCount();
        int count = 1;
        while (reader.ReadSegment(wellID, time, time, size, data))
            ++count;
        // The first pass for one well remembers places, many in one allocation; the second has nothing to add.
        EXPECT_LE(AllocationCount() - beforeReading, pass == 1 ? 200U / 16 : 0U);
        EXPECT_EQ(count, pass == 0 ? 200 : 100);
    }
}

}  // namespace
