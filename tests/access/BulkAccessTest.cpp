#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tests/access/ReaderTwin.h"
#include "tests/access/SamplesOf.h"
#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/reference/Twin.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr std::int64_t kFirstSegment = 3650;
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr const char* kBadSegment = "Error reading Data Segment Header";

std::vector<std::uint16_t> Ascending(std::uint16_t first, std::size_t count) {
    std::vector<std::uint16_t> samples;
    for (std::size_t i = 0; i < count; ++i)
        samples.push_back(static_cast<std::uint16_t>(first + i));
    return samples;
}

/// Returns one line for each well: its runs, as first time/interval x samples @ offset.
std::string RunsOf(const CSampleSelection& selection) {
    std::string line;
    for (const CWellSamples& well : selection.GetWells()) {
        line += std::to_string(well.WellID) + ":";
        for (const CSampleRun& run : well.Runs)
            line += " " + std::to_string(run.TimeFrom) + "/" + std::to_string(run.Interval) + "x" +
                    std::to_string(run.Samples) + "@" + std::to_string(run.Offset);
        line += ";";
    }
    return line;
}

class BulkAccessTest : public testing::Test {
 protected:
    /// Writes a file of one finished recording of wells 11 and 12, with an interval of 100, and returns its index.
    CRecordingIndex IndexOf(const CSegmentTexts& segments, const CIndexOptions& options = {}) {
        Write(RecordingHdrBytes({.data = kFirstSegment}) + ChainBytes(segments));
        return CRawDataFile(m_path).ReadIndex(0, options);
    }
    void Write(const std::string& recordings) {
        std::filesystem::remove(m_path);  // truncating a file takes milliseconds on some systems
        WriteAll(m_path, FileHdrBytes(1190) + recordings);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
};

TEST_F(BulkAccessTest, IndexHasEverySegmentInFileOrder) {
    const CRecordingIndex index = IndexOf({{12, 0, {7, 8}}, {11, 50, {1, 2, 3}}, {13, -5, {9}}});
    ASSERT_EQ(index.GetSegmentCount(), 3U);
    EXPECT_EQ(index.GetSegment(0), (CSegmentInfo{12, 2, 0, 100, 3950}));
    EXPECT_EQ(index.GetSegment(1), (CSegmentInfo{11, 3, 50, 250, 4254}));
    EXPECT_EQ(index.GetSegment(2), (CSegmentInfo{13, 1, -5, -5, 4560}));
    EXPECT_EQ(index.GetCertainSamples(), 6U);
    ASSERT_EQ(index.GetWells().size(), 3U);
    EXPECT_EQ(index.GetWells()[0].ID, 11);  // the header's wells come first, in its order
    EXPECT_EQ(index.GetWells()[1].ID, 12);
    EXPECT_EQ(index.GetWells()[2].ID, 13);
    EXPECT_TRUE(std::isnan(index.GetWells()[2].UnitsPerAD));
    EXPECT_EQ(index.GetRecordingHdr().TaskName, "CompoundTest");
}

TEST_F(BulkAccessTest, GapsAndOverlapsBeginNewRuns) {
    const struct {
        std::vector<std::int64_t> from;  ///< Of segments of 3 samples of well 11.
        std::string runs;
    } cases[] = {
        {{0, 300, 600}, "11: 0/100x9@0;12:;"},                          // seamless
        {{0, 400, 700}, "11: 0/100x3@0 400/100x6@3;12:;"},              // a gap
        {{0, 301}, "11: 0/100x3@0 301/100x3@3;12:;"},                   // a gap of less than one interval
        {{0, 200, 500}, "11: 0/100x3@0 200/100x6@3;12:;"},              // an overlap
        {{600, 300, 0}, "11: 600/100x3@0 300/100x3@3 0/100x3@6;12:;"},  // not sorted
        {{kMost - 250, 0}, "11: " + std::to_string(kMost - 250) + "/100x3@0 0/100x3@3;12:;"},
    };
    for (const auto& c : cases) {
        CSegmentTexts segments;
        for (const std::int64_t from : c.from)
            segments.push_back({11, from, Ascending(static_cast<std::uint16_t>(10 * segments.size()), 3)});
        EXPECT_EQ(RunsOf(IndexOf(segments).Select()), c.runs);
    }
}

TEST_F(BulkAccessTest, IntervalOfAnUnlistedWellComesFromItsSegments) {
    const CRecordingIndex index = IndexOf({{13, 0, {1, 2, 3}, 7}, {13, 21, {4, 5}, 7}, {13, 28, {6, 7, 8}, 5}});
    EXPECT_EQ(RunsOf(index.Select({.WellIDs = {13}})), "13: 0/7x5@0 28/5x3@5;");
}

TEST_F(BulkAccessTest, RangesSelectSamplesByTheirTimes) {
    const CRecordingIndex index = IndexOf({{11, 0, Ascending(0, 4)}, {11, 400, Ascending(4, 4)}, {11, 1000, {50, 51}}});
    const struct {
        std::int64_t from, to;
        std::string runs;
        std::vector<std::uint16_t> samples;
    } cases[] = {
        {0, 1100, "11: 0/100x8@0 1000/100x2@8;", {0, 1, 2, 3, 4, 5, 6, 7, 50, 51}},
        {100, 100, "11: 100/100x1@0;", {1}},
        {101, 199, "11:;", {}},
        {101, 500, "11: 200/100x4@0;", {2, 3, 4, 5}},
        {300, 400, "11: 300/100x2@0;", {3, 4}},
        {701, 1099, "11: 1000/100x1@0;", {50}},
        {-kMost, -1, "11:;", {}},
        {1101, kMost, "11:;", {}},
        {500, 100, "11:;", {}},
    };
    for (const auto& c : cases) {
        const CSampleSelection selection = index.Select({.WellIDs = {11}, .From = c.from, .To = c.to});
        EXPECT_EQ(RunsOf(selection), c.runs) << c.from << " to " << c.to;
        EXPECT_EQ(SamplesOf(selection), c.samples) << c.from << " to " << c.to;
    }
}

TEST_F(BulkAccessTest, SegmentsAreSelectedByTheirNumbers) {
    constexpr std::size_t kAll = 300;
    constexpr std::size_t kMostSegments = std::numeric_limits<std::size_t>::max();
    CSegmentTexts segments;
    for (std::size_t i = 0; i < kAll; ++i)
        segments.push_back({i % 3 == 0 ? 11 : 12, 0, Ascending(static_cast<std::uint16_t>(i), 1)});
    const CRecordingIndex index = IndexOf(segments);
    for (const std::size_t first : {0U, 1U, 15U, 16U, 17U, 127U, 128U, 200U, 299U, 300U, 1000U}) {
        for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{16}, kAll, kMostSegments}) {
            std::vector<std::uint16_t> expected[2];
            for (std::size_t i = first; i < kAll && i - first < count; ++i)
                expected[i % 3 == 0 ? 0 : 1].push_back(static_cast<std::uint16_t>(i));
            const auto selected = [&](const std::vector<std::int32_t>& wells) {
                return SamplesOf(index.Select({.WellIDs = wells, .FirstSegment = first, .Segments = count}));
            };
            EXPECT_EQ(selected({11}), expected[0]) << first << " and " << count;
            expected[0].insert(expected[0].end(), expected[1].begin(), expected[1].end());
            EXPECT_EQ(selected({11, 12}), expected[0]) << first << " and " << count;
        }
    }
}

// All sizes: small segments are read through a block, large ones directly, and some are near the limits.
TEST_F(BulkAccessTest, EverySampleIsReadIntoItsPlace) {
    CSegmentTexts segments;
    std::vector<std::uint16_t> expected[2];
    std::uint16_t next = 0;
    const auto add = [&](std::size_t count) {
        const std::size_t well = segments.size() % 2;
        segments.push_back({static_cast<int>(11 + well), 0, Ascending(next, count)});
        expected[well].insert(expected[well].end(), segments.back().samples.begin(), segments.back().samples.end());
        next = static_cast<std::uint16_t>(next + 7 * count + 1);
    };
    for (const std::size_t count : {1U, 2U, 511U, 512U, 513U, 2047U, 3000U, 32767U, 32768U, 32769U, 100000U})
        for (const std::size_t after : {count, std::size_t{1}, std::size_t{600}})
            add(after);
    for (int i = 0; i < 400; ++i)
        add(i < 200 ? 3 : 520);
    const CRecordingIndex index = IndexOf(segments);
    std::vector<std::uint16_t> all = expected[0];
    all.insert(all.end(), expected[1].begin(), expected[1].end());
    EXPECT_TRUE(SamplesOf(index.Select()) == all);
    EXPECT_TRUE(SamplesOf(index.Select({.WellIDs = {12}})) == expected[1]);
    const CSampleSelection one = index.Select({.WellIDs = {12}});
    std::vector<double> values(one.GetSamples() + 1, 0.5);
    one.ReadScaled({{std::span(values)}});
    for (std::size_t i = 0; i < expected[1].size(); ++i)
        ASSERT_EQ(values[i], (expected[1][i] - 32768) * 0.0002) << i;
    EXPECT_EQ(values.back(), 0.5);  // after the samples
}

TEST_F(BulkAccessTest, WellsAreInTheRequestedOrder) {
    const CRecordingIndex index = IndexOf({{11, 0, {1, 2}}, {12, 0, {3}}, {13, 0, {4}}});
    const CSampleSelection selection = index.Select({.WellIDs = {12, 99, 11, 12, 99}});
    EXPECT_EQ(RunsOf(selection), "12: 0/100x1@0;99:;11: 0/100x2@0;");
    EXPECT_EQ(SamplesOf(selection), (std::vector<std::uint16_t>{3, 1, 2}));
    double unlisted = 0;
    index.Select({.WellIDs = {13}}).ReadScaled({{std::span(&unlisted, 1)}});
    EXPECT_TRUE(std::isnan(unlisted));
}

TEST_F(BulkAccessTest, ValuesAreNaNOnlyIfTheirWellHasNoUnits) {
    std::string bytes = RecordingHdrBytes({.data = kFirstSegment}) + ChainBytes({{11, 0, {1}}, {12, 0, {2}}});
    bytes.replace(bytes.find("0.0002:"), 6, "1,0002");
    Write(bytes);
    const CRecordingIndex index = CRawDataFile(m_path).ReadIndex(0);
    double values[] = {0, 0};
    index.Select().ReadScaled({{std::span(values, 1), std::span(values + 1, 1)}});
    EXPECT_TRUE(std::isnan(values[0])) << "a reader takes 1";
    EXPECT_EQ(values[1], (2 - 32768) * 0.0002);
    EXPECT_EQ(index.GetRecordingHdr().WellChannels[0].UnitsPerAD, 1);
    // The units of a well that is listed twice are the first ones, and not those of the next well.
    bytes = RecordingHdrBytes({.data = kFirstSegment, .wells = "3", .wellIDs = "=11:11:12"});
    bytes.replace(bytes.find("Ticks=100"), 600,
                  Cell(200, "Ticks=100:100:100") + Cell(400, "UnitsPerADs=0.0001:0.0002:0.0003"));
    Write(bytes.replace(bytes.find("ADZeros="), 200, Cell(200, "ADZeros=0:0:12")) + ChainBytes({{12, 0, {2}}}));
    CRawDataFile(m_path).ReadIndex(0).Select().ReadScaled({{std::span(values, 0), std::span(values, 1)}});
    EXPECT_EQ(values[0], (2 - 12) * 0.0003);
}

TEST_F(BulkAccessTest, WrongBuffersAreRefused) {
    const CRecordingIndex index = IndexOf({{11, 0, {1, 2}}, {12, 0, {3}}});
    const CSampleSelection selection = index.Select();
    std::vector<std::uint16_t> room(3, 9);
    const std::span<std::uint16_t> two(room.data(), 2);
    const std::span<std::uint16_t> one(room.data() + 2, 1);
    for (const auto& buffers :
         std::vector<std::vector<std::span<std::uint16_t>>>{{}, {two}, {two, one, one}, {one, two}})
        EXPECT_EQ(TextOfFailure([&] { selection.Read(buffers); }), "The buffers don't match the wells.");
    for (const auto buffer : {one, std::span(room)})
        EXPECT_EQ(TextOfFailure([&] { index.ReadSegment(0, buffer); }), "The buffer doesn't match the segment.");
    EXPECT_EQ(room, (std::vector<std::uint16_t>{9, 9, 9}));
}

TEST_F(BulkAccessTest, RecordingsAreFoundAsTheReaderFindsThem) {
    const auto recording = [](int number, std::int64_t data, std::int64_t next) {
        return RecordingHdrBytes({.recording = number, .data = data, .next = next});
    };
    Write(recording(1, 3650, 3650) + recording(2, 6110, 6110) + recording(1, 8570, 8570) + recording(1, -1, 11030) +
          recording(3, -1, 13490) + recording(3, -1, -1));
    const CRawDataFile file(m_path);
    EXPECT_EQ(file.GetRecordings().size(), 6U);
    EXPECT_EQ(file.GetFileHdr().PlateID, "P1");
    EXPECT_EQ(file.FindRecording("CompoundTest", 1), 2U);  // the last finished one
    EXPECT_EQ(file.FindRecording("CompoundTest", 2), 1U);
    EXPECT_EQ(file.FindRecording("CompoundTest", 3), 5U);  // none is finished
    EXPECT_EQ(file.FindRecording("Series", 1), std::nullopt);
    EXPECT_EQ(file.ReadIndex(0).GetSegmentCount(), 0U);  // finished, without segments
    EXPECT_EQ(TextOfFailure([&] { static_cast<void>(file.ReadIndex(6)); }), "The file has no such recording.");
    EXPECT_EQ(TextOfFailure([&] { static_cast<void>(file.ReadIndex(5)); }), "The recording isn't finished.");
    EXPECT_EQ(TextOfFailure([&] { CRawDataFile(m_folder.Path("none")); }), "Cannot open file " + m_folder.Path("none"));
}

TEST_F(BulkAccessTest, SelectionOutlivesFileAndIndex) {
    IndexOf({{11, 0, {1, 2}}});
    const CSampleSelection selection = CRawDataFile(m_path).ReadIndex(0).Select();
    EXPECT_EQ(SamplesOf(selection), (std::vector<std::uint16_t>{1, 2}));
}

TEST_F(BulkAccessTest, ReadCallsTheCheckEvery16MiBAndStopsIfItThrows) {
    const std::size_t step = std::size_t{8} << 20;  // samples
    const CRecordingIndex index = IndexOf({{12, 0, {7}}, {11, 0, Ascending(0, step)}, {12, 100, {8}}});
    std::vector<std::uint16_t> samples(step + 2, 1);
    const std::span all(samples);
    const std::vector<std::span<std::uint16_t>> buffers = {all.first(step), all.last(2)};
    int checks = 0;
    index.Select().Read(buffers, [&] { ++checks; });
    EXPECT_EQ(checks, 1);
    EXPECT_EQ(samples, [&] {
        std::vector<std::uint16_t> expected = Ascending(0, step);
        expected.insert(expected.end(), {7, 8});
        return expected;
    }());
    EXPECT_THROW(index.Select().Read(buffers, [] { throw 1; }), int);
}

// ---- Damage ---------------------------------------------------------------------------------------------------------

TEST_F(BulkAccessTest, CutSamplesAreCountedAndReadAsZero) {
    for (const std::size_t samples : {10U, 700U}) {
        IndexOf({{11, 0, Ascending(1, samples)}, {12, 0, Ascending(1, samples)}});
        const auto size = std::filesystem::file_size(m_path);
        std::filesystem::resize_file(m_path, size - 5);  // half a sample counts as missing
        const CRecordingIndex index = CRawDataFile(m_path).ReadIndex(0);
        EXPECT_EQ(index.GetCertainSamples(), 2 * samples - 3);
        const CSampleSelection selection = index.Select();
        EXPECT_EQ(selection.GetWells()[0].Missing, 0U);
        EXPECT_EQ(selection.GetWells()[1].Missing, 3U);
        EXPECT_EQ(index.Select({.From = 100}).GetWells()[1].Missing, 3U);
        EXPECT_EQ(index.Select({.To = 0}).GetWells()[1].Missing, 0U);
        EXPECT_EQ(CReaderTwin(m_path).Difference(), "");
    }
}

#if defined(__linux__)  // Windows doesn't let anybody cut an open file
TEST_F(BulkAccessTest, AFileThatBecameShorterIsRefused) {
    for (const std::size_t samples : {4U, 1000U}) {
        CSegmentTexts segments;
        for (int i = 0; i < 3; ++i)
            segments.push_back({.from = 100'000 * i, .samples = Ascending(1, samples)});
        const CRecordingIndex index = IndexOf(segments);
        const CSampleSelection selection = index.Select();
        std::vector<std::uint16_t> raw(selection.GetSamples());
        std::vector<double> scaled(raw.size());
        const std::span<std::uint16_t> rawBuffers[] = {raw, {}};
        const std::span<double> scaledBuffers[] = {scaled, {}};
        EXPECT_NO_THROW(selection.Read(rawBuffers));
        std::filesystem::resize_file(m_path, std::filesystem::file_size(m_path) - 1);
        EXPECT_EQ(TextOfFailure([&] { selection.Read(rawBuffers); }), kBadSegment);
        EXPECT_EQ(TextOfFailure([&] { selection.ReadScaled(scaledBuffers); }), kBadSegment);
        EXPECT_NO_THROW(index.ReadSegment(0, std::span(raw).first(samples)));
        EXPECT_EQ(TextOfFailure([&] { index.ReadSegment(2, std::span(raw).first(samples)); }), kBadSegment);
    }
}
#endif

TEST_F(BulkAccessTest, SegmentsBeforeDamageAreKeptOnRequest) {
    Write(RecordingHdrBytes({.data = kFirstSegment}) + SegmentHdrBytes(11, 3954, 0, 100, "2") + SampleBytes({1, 2}) +
          SegmentHdrBytes(12, -7, 0, 0, "1") + SampleBytes({3}));
    const CRawDataFile file(m_path);
    EXPECT_EQ(TextOfFailure([&] { static_cast<void>(file.ReadIndex(0)); }), "Error seeking Data Segment.");
    const CRecordingIndex index = file.ReadIndex(0, {.UpToDamage = true});
    EXPECT_EQ(index.GetDamage(), "Error seeking Data Segment.");
    EXPECT_EQ(SamplesOf(index.Select()), (std::vector<std::uint16_t>{1, 2, 3}));
}

// 2,000,000,000 samples would be 4 GB. Other wells, and other times of this well, are readable.
TEST_F(BulkAccessTest, SizesBeyondTheFileAllocateNothing) {
    const CRecordingIndex index = IndexOf({{11, 0, {1}}, {11, 100, {2}, 100, "2000000000"}, {12, 0, {3}}});
    const std::size_t before = AllocatedBytes();
    EXPECT_EQ(TextOfFailure([&] { index.Select(); }), kBadSegment);
    EXPECT_EQ(TextOfFailure([&] { index.Select({.WellIDs = {11}}); }), kBadSegment);
    EXPECT_LT(AllocatedBytes() - before, 4096U);
    EXPECT_EQ(SamplesOf(index.Select({.WellIDs = {11}, .To = 99})), (std::vector<std::uint16_t>{1}));
    EXPECT_EQ(SamplesOf(index.Select({.WellIDs = {12}})), (std::vector<std::uint16_t>{3}));
}

// Each segment alone claims only as many samples as a cut file may lack.
TEST_F(BulkAccessTest, SegmentsThatClaimTheSameBytesAreRefusedTogether) {
    const CRecordingIndex index = IndexOf({{11, 0, {1}, 100, "8000000"}, {12, 0, {2}, 100, "8000000"}});
    EXPECT_EQ(index.Select({.WellIDs = {11}}).GetSamples(), 8000000U);
    EXPECT_EQ(TextOfFailure([&] { index.Select(); }), kBadSegment);
}

TEST_F(BulkAccessTest, IndexTakesLessMemoryThanTheSegmentsInTheFile) {
    CSegmentTexts segments(5000, CSegmentText{11, 0, {1}});
    IndexOf(segments);
    const CRawDataFile file(m_path);
    const std::size_t before = AllocatedBytes();
    const CRecordingIndex index = file.ReadIndex(0);
    // Counts all that was allocated: also a block of 64 KiB for reading headers, and the column of wells as it grew.
    EXPECT_LT(AllocatedBytes() - before, 5000U * 44 + 66000 + 4096);
}

TEST(BulkAccessReferenceTest, AllReferenceFilesReadAsWithTheReader) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VXFILEIO_REFERENCE_DIR)) {
        if (entry.path().extension() != ".vxd") continue;
        ++files;
        EXPECT_EQ(CReaderTwin(entry.path().string()).Difference(), "") << entry.path();
    }
    EXPECT_GE(files, 15);
}

// Damages cells with values from small sets, so that chains point back, across and out of the file, and sizes and times
// contradict each other.
TEST_F(BulkAccessTest, DamagedFilesReadAsWithTheReader) {
    std::mt19937 random(1);
    const auto any = [&](std::size_t count) { return static_cast<std::size_t>(random() % count); };
    for (int file = 0; file < 600; ++file) {
        CSegmentTexts segments;
        std::vector<std::size_t> starts;
        std::size_t at = kFirstSegment;
        for (std::size_t i = any(12) + 1; i > 0; --i) {
            const auto from = static_cast<std::int64_t>(100 * any(12));
            segments.push_back(
                {static_cast<int>(11 + any(3)), from, Ascending(static_cast<std::uint16_t>(at), any(8) + 1)});
            starts.push_back(at);
            at += 300 + 2 * segments.back().samples.size();
        }
        std::string bytes = RecordingHdrBytes({.data = kFirstSegment}) + ChainBytes(segments);
        for (std::size_t damages = any(4); damages > 0; --damages) {
            const std::string values[] = {"ID=" + std::to_string(11 + any(3)),
                                          "FPosNextSegmentHdr=" + std::to_string(starts[any(starts.size())]),
                                          any(2) == 0 ? "FPosNextSegmentHdr=-1" : "FPosNextSegmentHdr=-7",
                                          "TimeFrom=" + std::to_string(any(2) == 0 ? kMost - 150 : -kMost),
                                          "Size=" + std::to_string(any(2) == 0 ? any(20) : 9000000 * any(3)),
                                          any(2) == 0 ? "Typo" : "TypeX"};
            const std::size_t cells[] = {50, 100, 100, 150, 250, 0};
            const std::size_t which = any(6);
            bytes.replace(starts[any(starts.size())] - 1190 + cells[which], 50, Cell(50, values[which]));
        }
        if (any(4) == 0) bytes.resize(bytes.size() - any(400));
        Write(bytes);
        ASSERT_EQ(CReaderTwin(m_path).Difference(), "") << "file " << file;
    }
}

// ---- Unfinished recordings ------------------------------------------------------------------------------------------

TEST_F(BulkAccessTest, UnfinishedRecordingsAreReadUpToTheLastWholeSegment) {
    const std::string three = ChainBytes({{11, 0, {1, 2}}, {12, 0, {3, 4}}, {11, 200, {5, 6}}});
    const std::string unpointed = ChainBytes({{11, 0, {1, 2}}}) + ChainBytes({{12, 0, {3, 4}}}, 3954);
    const auto patched = [&](std::size_t at, const std::string& text) {
        std::string bytes = three;
        return bytes.replace(at, 50, Cell(50, text));
    };
    const struct {
        const char* what;
        std::string bytes;
        std::size_t segments, certain;
    } cases[] = {
        {"nothing", "", 0, 0},
        {"no segment", std::string(400, 'x'), 0, 0},
        {"all", three, 3, 6},
        {"the last one cut", three.substr(0, 911), 2, 4},
        {"the second one cut", three.substr(0, 607), 1, 2},
        {"a header cut", three.substr(0, 700), 2, 4},
        {"the first one alone", unpointed.substr(0, 304), 1, 0},
        {"one that no position points at", unpointed, 2, 2},
        {"one that no position points at, cut", unpointed.substr(0, 607), 1, 0},
        {"a size that doesn't fit the times, and no position that points at it",
         ChainBytes({{11, 0, {1, 2}}}) + SegmentHdrBytes(12, -1, 0, 0, "2") + SampleBytes({3, 4}), 1, 0},
        {"the same after one that a position points at",
         ChainBytes({{11, 0, {1, 2}}, {12, 0, {3, 4}}}) + SegmentHdrBytes(12, -1, 200, 200, "2") + SampleBytes({5, 6}),
         2, 4},
        {"a position outside the file", patched(404, "FPosNextSegmentHdr=99999"), 2, 4},
        {"a position that points back", patched(404, "FPosNextSegmentHdr=3650"), 2, 4},
        {"a position below 0", patched(404, "FPosNextSegmentHdr=-7"), 2, 4},
    };
    for (const auto& c : cases) {
        Write(RecordingHdrBytes({}) + c.bytes);
        const CRecordingIndex index = CRawDataFile(m_path).ReadIndex(0, {.Unfinished = true});
        EXPECT_EQ(index.GetSegmentCount(), c.segments) << c.what;
        EXPECT_EQ(index.GetCertainSamples(), c.certain) << c.what;
        EXPECT_EQ(index.GetDamage(), "") << c.what;
        const CSampleSelection selection = index.Select();
        EXPECT_EQ(selection.GetSamples(), 2 * c.segments) << c.what;
        EXPECT_EQ(selection.GetWells()[0].Missing, 0U) << c.what;
        const std::vector<std::uint16_t> all[] = {{}, {1, 2}, {1, 2, 3, 4}, {1, 2, 5, 6, 3, 4}};
        EXPECT_EQ(SamplesOf(selection), all[c.segments]) << c.what;
    }
}

TEST_F(BulkAccessTest, UnfinishedRecordingAfterOthersIsFoundByItsHeader) {
    const std::string first = RecordingHdrBytes({.data = 3650, .next = 3954}) + ChainBytes({{11, 0, {1, 2}}});
    Write(first + RecordingHdrBytes({.recording = 2}) + ChainBytes({{11, 0, {3}}, {12, 0, {4}}}, 6414));
    const CRecordingIndex index = CRawDataFile(m_path).ReadIndex(1, {.Unfinished = true});
    EXPECT_EQ(SamplesOf(index.Select()), (std::vector<std::uint16_t>{3, 4}));
}

TEST_F(BulkAccessTest, IndexGrowsWithAFileThatIsBeingWritten) {
    CIRawDataWriter writer;
    BeginExample(writer, m_path);
    const CRawDataFile file(m_path);
    for (std::int64_t i = 0; i < 300; ++i) {
        const auto samples = Ascending(static_cast<std::uint16_t>(i), static_cast<std::size_t>(1 + i * 37 % 4000));
        const std::int64_t to = 100 * static_cast<std::int64_t>(samples.size() - 1);
        writer.WriteData(11, 0, to, 100, samples.data());
        if (i % 10 != 0) continue;
        const CRecordingIndex index = file.ReadIndex(0, {.Unfinished = true});
        ASSERT_EQ(index.GetSegmentCount(), static_cast<std::size_t>(i + 1));
        const std::uint64_t before = i == 0 ? samples.size() : 0;
        ASSERT_EQ(index.GetCertainSamples(), index.Select().GetSamples() - before);
        const auto read = SamplesOf(index.Select());
        ASSERT_TRUE(std::equal(samples.rbegin(), samples.rend(), read.rbegin()));
    }
}

}  // namespace
