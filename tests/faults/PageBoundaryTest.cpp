#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/faults/SystemCalls.h"
#include "tests/rawdata/ExampleHdrs.h"
#include "tests/support/TempFolder.h"

/// @file
/// The system copies written data page by page, and a process can be killed between two pages. These tests try every
/// state in which this can leave a file.

namespace {

constexpr std::size_t kPage = 4096;

struct CWrite {
    std::size_t offset;
    std::string bytes;
};

/// Writes recordings with one long and one short segment. The length of the first moves everything after it.
std::vector<CWrite> WritesOf(const std::string& path, std::int64_t samples) {
    std::vector<CRecordedCall> calls;
    RecordCalls(&calls);
    CIRawDataWriter writer;
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    for (int recording = 1; recording <= 3; ++recording) {
        const std::int64_t count = recording == 1 ? samples : 1;
        writer.WriteRecordingHdr(ExampleRecordingHdr("Series", recording));
        writer.WriteData(11, 0, count - 1, 1, std::vector<std::uint16_t>(static_cast<std::size_t>(count)).data());
        writer.WriteData(12, 0, 0, 1, std::vector<std::uint16_t>(1).data());
    }
    writer.Close();
    RecordCalls(nullptr);
    std::vector<CWrite> writes;
    for (CRecordedCall& call : calls) {
        if (call.name == "pwritev") writes.push_back({static_cast<std::size_t>(call.offset), std::move(call.bytes)});
    }
    return writes;
}

/// Returns the position in a cell as readers parse it: from its first `=` to the next, or to a NUL.
std::string PositionAt(const std::string& file, std::size_t cell) {
    const std::size_t begin = file.find('=', cell) + 1;
    return file.substr(begin, file.find_first_of(std::string("=\0", 2), begin) - begin);
}

/// Returns the offsets of all cells with positions.
std::vector<std::size_t> PositionCells(const std::string& file) {
    std::vector<std::size_t> cells;
    for (auto at = file.find("FPos"); at != std::string::npos; at = file.find("FPos", at + 1))
        cells.push_back(at);
    return cells;
}

/// Checks all positions in the first `size` bytes of a file whose writer was killed: each is unset or final.
void ExpectSound(const std::string& file, std::size_t size, const std::string& whole) {
    for (const std::size_t cell : PositionCells(whole)) {
        if (cell + 50 > size) break;
        const std::string position = PositionAt(file, cell);
        const bool isFinal = position == PositionAt(whole, cell);
        ASSERT_TRUE(isFinal || position == "-1")
            << position << " at " << cell << " instead of " << PositionAt(whole, cell);
        if (isFinal || whole.compare(cell, 17, "FPosRecordingData") != 0) continue;
        ASSERT_EQ(PositionAt(file, cell + 100), "-1") << "an unfinished recording has a successor";
    }
}

TEST(PageBoundaryTest, AWriterKilledBetweenTwoPagesLeavesNoPartialNumber) {
    const CTempFolder folder;
    const std::string path = folder.Path("pages.vxd");
    for (std::int64_t samples = 1; samples <= static_cast<std::int64_t>(kPage / 2); ++samples) {
        SCOPED_TRACE("samples of the first segment: " + std::to_string(samples));
        const auto writes = WritesOf(path, samples);
        const std::string whole = ReadAll(path);
        std::string file;
        for (const CWrite& write : writes) {
            // No position points at appended bytes until they are written, so only the earlier bytes are checked.
            const std::size_t before = file.size();
            file.resize(std::max(before, write.offset + write.bytes.size()));
            for (std::size_t done = 0; done < write.bytes.size();) {
                const std::size_t part = std::min(kPage - (write.offset + done) % kPage, write.bytes.size() - done);
                file.replace(write.offset + done, part, write.bytes, done, part);
                done += part;
                ExpectSound(file, before, whole);
                if (HasFatalFailure()) return;
            }
        }
        ASSERT_EQ(file, whole);
    }
}

TEST(PageBoundaryTest, OnlyANumberAcrossTwoPagesNeedsAnotherCall) {
    const CTempFolder folder;
    std::size_t more = 0;
    for (std::int64_t samples = 1; samples <= static_cast<std::int64_t>(kPage / 2); ++samples) {
        const std::size_t calls = WritesOf(folder.Path("calls.vxd"), samples).size();
        ASSERT_GE(calls, 17U);  // ten headers and segments, seven rewrites of positions
        more += calls - 17;
    }
    // The boundary can be anywhere in the numbers of seven cells: two of at most four digits, and two of -1.
    EXPECT_GT(more, 6U);
    EXPECT_LT(more, 34U);
}

}  // namespace
