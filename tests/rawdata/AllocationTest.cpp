#include <gtest/gtest.h>

#include <new>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/TempFolder.h"

namespace {

// Positions, times and sizes have many digits, so that no short string avoids an allocation.
TEST(AllocationTest, SteadyWritingAndReadingAllocateNothing) {
    constexpr std::int64_t kLate = 1'000'000'000'000'000'000;
    const CTempFolder folder;
    const std::string path = folder.Path("steady.vxd");
    const std::vector<std::uint16_t> samples(1000, 5);
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    BeginExample(writer, path);
    const std::size_t beforeWriting = AllocationCount();
    for (std::int32_t i = 0; i < 200; ++i)
        writer.WriteData(1'000'000'000 + i % 2, kLate, kLate + 999, 1, samples.data());
    EXPECT_EQ(AllocationCount(), beforeWriting);
    writer.Close();

    CIRawDataReader& reader = *io.GetRawDataReader();
    reader.Open(path);
    auto [wellID, time, unused, size, data] = CNextSegment();
    for (const int pass : {0, 1, 2}) {
        reader.SelectWellID(pass == 0 ? -1 : 1'000'000'001);
        ASSERT_TRUE(reader.JumpToData("CompoundTest", 1));
        ASSERT_TRUE(reader.ReadSegment(wellID, time, time, size, data));
        const std::size_t beforeReading = AllocationCount();
        int count = 1;
        while (reader.ReadSegment(wellID, time, time, size, data))
            ++count;
        // The first pass for one well remembers offsets, many per allocation; the second pass adds none.
        EXPECT_LE(AllocationCount() - beforeReading, pass == 1 ? 200U / 16 : 0U);
        EXPECT_EQ(count, pass == 0 ? 200 : 100);
    }
}

/// Reads a recording to its end with a new reader. Allocation number `failing` fails, and the call is repeated. Returns
/// the times of the segments.
std::vector<std::int64_t> TimesReadDespite(std::size_t failing, const std::string& path, std::int32_t well) {
    std::vector<std::int64_t> times;
    times.reserve(100);
    CIRawDataReader reader;
    reader.Open(path);
    reader.SelectWellID(well);
    EXPECT_TRUE(reader.JumpToData("CompoundTest", 1));
    FailAllocation(failing);
    for (bool goesOn = true; goesOn;) {
        auto [wellID, from, to, size, data] = CNextSegment();
        try {
            goesOn = reader.ReadSegment(wellID, from, to, size, data);
            if (goesOn) times.push_back(from);
        } catch (const std::bad_alloc&) {
            FailAllocation(0);
        }
    }
    FailAllocation(0);
    return times;
}

TEST(AllocationTest, ASegmentIsDeliveredByTheCallAfterAFailedAllocation) {
    const CTempFolder folder;
    const std::string path = folder.Path("grows.vxd");
    CIRawDataWriter writer;
    BeginExample(writer, path);
    const std::vector<std::uint16_t> samples(20, 5);
    for (std::int64_t time = 0; time < 8; ++time)
        writer.WriteData(11 + static_cast<std::int32_t>(time % 2), time, 2 * time, 1, samples.data());
    writer.Close();

#if !defined(_WIN32)  // where the library's DLL has its own allocator
    CIRawDataReader reader;
    reader.Open(path);
    ASSERT_TRUE(reader.JumpToData("CompoundTest", 1));
    auto [well, from, unused, size, data] = CNextSegment();
    ASSERT_TRUE(reader.ReadSegment(well, from, from, size, data));
    const std::size_t live = LiveAllocations();
    FailAllocation(1);
    EXPECT_THROW(static_cast<void>(reader.ReadSegment(well, from, from, size, data)), std::bad_alloc);
    FailAllocation(0);
    EXPECT_EQ(LiveAllocations(), live - 1) << "the previous segment is freed first";
#endif

    for (std::size_t failing = 1; failing < 20; ++failing) {
        const std::vector<std::int64_t> all = {0, 1, 2, 3, 4, 5, 6, 7};
        EXPECT_EQ(TimesReadDespite(failing, path, -1), all) << failing;
        EXPECT_EQ(TimesReadDespite(failing, path, 12), std::vector<std::int64_t>({1, 3, 5, 7})) << failing;
    }
}

}  // namespace
