#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr const char* kNotOurs = "Opened file is not a Vexaprobe file.";
constexpr const char* kEmpty = "Opened file is empty.";
constexpr const char* kBadRecording = "Error reading Recording Header";
constexpr const char* kBadSegment = "Error reading Data Segment Header";
constexpr const char* kBadSeek = "Error seeking Data Segment.";

/// A small file to damage.
class DamagedFileTest : public testing::Test {
 protected:
    void SetCell(std::size_t offset, std::size_t width, const std::string& text) {
        m_bytes.replace(offset, width, Cell(width, text));
    }

    /// Opens the bytes and reads all recordings into one line. Returns the text of the failure if opening fails.
    std::string Outcome() {
        WriteAll(m_path, m_bytes);
        const std::string failure = TextOfFailure([&] { m_reader.Open(m_path); });
        if (failure != "no failure") return failure;
        std::string line;
        for (int i = 0; i < m_reader.GetIndex()->GetCount(); ++i) {
            const CIndexEntry& entry = *m_reader.GetIndex()->GetEntry(i);
            AskEverything(entry);
            line += entry.TaskName + std::to_string(entry.Recording) + ": ";
            if (!m_reader.JumpToData(entry.TaskName, entry.Recording)) {
                line += "unreachable ";
                continue;
            }
            m_reader.SelectWellID(12);
            SegmentsOf(m_reader);
            m_reader.SelectWellID(-1);
            m_reader.JumpToData(entry.TaskName, entry.Recording);
            line += SegmentsOf(m_reader);
        }
        return line;
    }

    void AskEverything(const CIndexEntry& entry) {
        m_reader.GetTasks();
        m_reader.GetDoses(entry.TaskName, 11);
        m_reader.GetWellIDs(entry.TaskName, entry.Recording);
        EXPECT_NE(m_reader.GetRecordingHdr(entry.TaskName, entry.Recording), nullptr);
    }

    /// Reads a segment, which must be all zeros, and returns its number of samples or the text of the failure.
    std::string SizeOfNext() {
        CNextSegment next;
        const std::string failure =
            TextOfFailure([&] { m_reader.ReadSegment(next.well, next.from, next.to, next.size, next.samples); });
        EXPECT_EQ(std::count(next.samples, next.samples + next.size, 0), next.size);
        return failure == "no failure" ? std::to_string(next.size) : failure;
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("damaged.vxd");
    std::string m_bytes = SmallFileBytes();
    CIRawDataReader m_reader;
};

TEST_F(DamagedFileTest, TheMissingPartOfACutFileReadsAsZerosIfTheFirstCellOfItsHeaderIsWhole) {
    const std::string whole = m_bytes;
    const std::string none = "CompoundTest1: ";
    const std::string first = none + "11[0..300]1,256,65535,32768 ";
    const std::pair<std::size_t, std::string> firstCells[] = {
        {0, kNotOurs}, {1190, kBadRecording}, {3650, none + kBadSegment}, {3958, first + kBadSegment}};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        m_bytes = whole.substr(0, size);
        const std::string outcome = Outcome();
        const auto isIn = [&](const auto& cell) { return size >= cell.first && size < cell.first + 50; };
        const auto* const cell = std::find_if(std::begin(firstCells), std::end(firstCells), isIn);
        m_bytes.resize(whole.size());
        EXPECT_EQ(outcome, cell == std::end(firstCells) ? Outcome() : cell->second) << size;
    }
    for (const auto& [size, outcome] : {std::pair<std::size_t, std::string>{1439, kBadRecording},
                                        {3649, none + kBadSegment},
                                        {3700, none + "0[0..0] " + kBadSegment},
                                        {3949, none + "11[0..300]0,0,0,0 " + kBadSegment},
                                        {4257, first + "12[0..300]0,0,0,0 end"},
                                        {4261, first + "12[0..300]7,8,0,0 end"},
                                        {4265, first + "12[0..300]7,8,9,10 end"}}) {
        m_bytes = whole.substr(0, size);
        EXPECT_EQ(Outcome(), outcome) << size;
    }
}

// No damaged byte has an undocumented outcome or crashes the reader.
TEST_F(DamagedFileTest, EveryDamagedHeaderByteHasADocumentedOutcome) {
    const std::string whole = m_bytes;
    const std::set<std::string> documented = {kNotOurs, kEmpty, kBadRecording};
    std::set<std::string> seen;
    const auto isDocumentedEnding = [](const std::string& line) {
        for (const char* ending : {"end", "unreachable ", kBadSegment, kBadSeek}) {
            if (line.ends_with(ending)) return true;
        }
        return false;
    };
    for (std::size_t at = 0; at < 4258; ++at) {
        if (at >= 3950 && at < 3958) continue;  // samples
        for (const int flip : {0x01, 0xFF}) {
            m_bytes = whole;
            m_bytes[at] = static_cast<char>(m_bytes[at] ^ flip);
            const std::string outcome = Outcome();
            EXPECT_TRUE(documented.contains(outcome) || isDocumentedEnding(outcome)) << at << ": " << outcome;
            seen.insert(outcome);
        }
    }
    EXPECT_TRUE(seen.contains(kNotOurs) && seen.contains(kBadRecording));
}

TEST_F(DamagedFileTest, RecordingLoopsAreReported) {
    SetCell(1440, 50, "FPosNextRecordingHdr=1190");
    EXPECT_EQ(Outcome(), kBadRecording);
    m_bytes = FileHdrBytes(1190);
    for (int i = 0; i < 40; ++i) {
        m_bytes += RecordingHdrBytes({.recording = i, .next = i < 39 ? 1190 + 2460 * (i + 1) : 1190 + 2460 * 17});
    }
    EXPECT_EQ(Outcome(), kBadRecording);
}

TEST_F(DamagedFileTest, SegmentLoopsAreReportedAgainAfterEachJump) {
    SetCell(4058, 50, "FPosNextSegmentHdr=3650");
    WriteAll(m_path, m_bytes);
    m_reader.Open(m_path);
    for (const int well : {-1, 12, 99}) {
        m_reader.SelectWellID(well);
        for (int pass = 0; pass < 2; ++pass) {
            ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
            const std::string line = SegmentsOf(m_reader, 100);
            EXPECT_TRUE(line.ends_with(kBadSegment)) << line;
            EXPECT_EQ(line.starts_with(well == 99   ? "Error"
                                       : well == 12 ? "12["
                                                    : "11[0..300]1,256,65535,32768 12["),
                      true);
            EXPECT_EQ(SegmentsOf(m_reader, 100), kBadSegment);  // the position doesn't advance
        }
    }
}

// Each cell is part of several headers: the key of the header that begins with it, and the next position of the header
// two cells before. The chain never repeats, but has more segments than an undamaged file of this size.
TEST_F(DamagedFileTest, OverlappingSegmentsAreReportedOnceTheyAreTooMany) {
    m_bytes = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650});
    for (int at = 3650; at < 30000; at += 50)
        m_bytes += Cell(50, "Type=" + std::to_string(at - 50));
    WriteAll(m_path, m_bytes);
    m_reader.Open(m_path);
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    const std::size_t most = m_bytes.size() / 300 + 1;
    std::size_t delivered = 0;
    while (SegmentsOf(m_reader, 1) != kBadSegment)
        ++delivered;
    EXPECT_EQ(delivered, most);
}

TEST_F(DamagedFileTest, SegmentPositionsOutsideTheFileAreReported) {
    struct {
        const char* position;
        std::string outcome;
    } const cases[] = {{"-2", kBadSeek},      {"-9223372036854775808", kBadSeek},
                       {"4266", kBadSegment}, {"9223372036854775807", kBadSegment},
                       {"0", kBadSegment},    {"-1", "unreachable "}};
    for (const auto& c : cases) {
        SetCell(1340, 50, std::string("FPosRecordingData=") + c.position);
        EXPECT_EQ(Outcome(), "CompoundTest1: " + c.outcome) << c.position;
        m_bytes = SmallFileBytes();
        if (c.outcome == "unreachable ") continue;
        SetCell(3750, 50, std::string("FPosNextSegmentHdr=") + c.position);
        EXPECT_EQ(Outcome(), "CompoundTest1: 11[0..300]1,256,65535,32768 " + c.outcome) << c.position;
        m_bytes = SmallFileBytes();
    }
}

TEST_F(DamagedFileTest, SizesBeyondTheFileReadAsZerosOrFailWithoutAllocating) {
    const auto lastSegment = [&](const std::string& size) {
        m_bytes = SmallFileBytes();
        SetCell(4208, 50, "Size=" + size);
        std::string line = Outcome();
        return line.substr(line.find("32768 ") + 6);
    };
    EXPECT_EQ(lastSegment("6"), "12[0..300]7,8,9,10,0,0 end");
    EXPECT_EQ(lastSegment("0"), "12[0..300] end");
    EXPECT_EQ(lastSegment("4611686018427387904"), "12[0..300] end");  // its low 32 bits are 0
    EXPECT_EQ(lastSegment("4294967298"), "12[0..300]7,8 end");
    for (const char* size : {"-1", "4294967295", "2147483647", "9223372036854775807", "10000000"}) {
        EXPECT_EQ(lastSegment(size), kBadSegment) << size;
    }
}

// Tests the largest segment whose missing samples have no more bytes than the file, and one with one more sample.
TEST_F(DamagedFileTest, ASegmentMayLackAsManyBytesAsTheFileHas) {
    constexpr std::int64_t kFileSize = 18'000'000;
    constexpr std::int64_t kSecond = kFileSize - 300;
    for (const bool isRefused : {false, true}) {
        const std::int64_t size = kFileSize / 2 + (isRefused ? 1 : 0);
        const std::string whole = std::to_string((kSecond - 3950) / 2);
        WriteAll(m_path,
                 FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}) + SegmentHdrBytes(11, kSecond, 0, 1, whole));
        std::filesystem::resize_file(m_path, kSecond);  // the samples are a hole in the file
        std::ofstream(m_path, std::ios::binary | std::ios::app) << SegmentHdrBytes(12, -1, 0, 1, std::to_string(size));
        m_reader.Open(m_path);
        for (const int well : {-1, 12}) {
            m_reader.SelectWellID(well);
            ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
            if (well == -1) {
                EXPECT_EQ(SizeOfNext(), whole);
            }
            EXPECT_EQ(SizeOfNext(), isRefused ? kBadSegment : std::to_string(size));
        }
    }
}

TEST_F(DamagedFileTest, TheNextSegmentFollowsOneWhoseSizeIsRefused) {
    SetCell(3900, 50, "Size=2147483647");
    WriteAll(m_path, m_bytes);
    m_reader.Open(m_path);
    for (const int well : {-1, 11, 12}) {
        m_reader.SelectWellID(well);
        for (int pass = 0; pass < 2; ++pass) {
            ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
            if (well != 12) {
                EXPECT_EQ(SegmentsOf(m_reader), kBadSegment);
            }
            EXPECT_EQ(SegmentsOf(m_reader), well == 11 ? "end" : "12[0..300]7,8,9,10 end");
        }
    }
}

TEST_F(DamagedFileTest, ImpossibleChannelCountsAreReported) {
    for (const char* count : {"194", "2147483647", "-1", "99999999999"}) {
        m_bytes = SmallFileBytes();
        SetCell(1590, 30, std::string("NumberOfWells=") + count);
        EXPECT_EQ(Outcome(), kBadRecording) << count;
        m_bytes = SmallFileBytes();
        SetCell(2620, 30, std::string("NumberOfAuxCh=") + count);
        EXPECT_EQ(Outcome(), kBadRecording) << count;
    }
    m_bytes = SmallFileBytes();
    SetCell(1590, 30, "NumberOfWells=193");
    EXPECT_NE(Outcome(), kBadRecording);
    EXPECT_EQ(m_reader.GetWellIDs("CompoundTest").size(), 193U);
}

TEST_F(DamagedFileTest, ReaderWorksAfterAnyFailure) {
    const std::string whole = m_bytes;
    SetCell(3958, 50, "Typo=Well");
    EXPECT_EQ(Outcome(), std::string("CompoundTest1: 11[0..300]1,256,65535,32768 ") + kBadSegment);
    EXPECT_EQ(SegmentsOf(m_reader), kBadSegment);
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    EXPECT_EQ(SegmentsOf(m_reader, 1), "11[0..300]1,256,65535,32768");
    m_bytes = "rubbish";
    EXPECT_EQ(Outcome(), kNotOurs);
    EXPECT_EQ(SegmentsOf(m_reader), "end");
    m_bytes = whole;
    EXPECT_EQ(Outcome(), "CompoundTest1: 11[0..300]1,256,65535,32768 12[0..300]7,8,9,10 end");
}

}  // namespace
