#include <gtest/gtest.h>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"

namespace {

class ReaderTest : public testing::Test {
 protected:
    void OpenBytes(const std::string& bytes) {
        WriteAll(m_path, bytes);
        m_reader.Open(m_path);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    CVXFileIO m_io;
    CIRawDataReader& m_reader = *m_io.GetRawDataReader();
};

TEST_F(ReaderTest, IndexReturnsNullOutsideItsRange) {
    OpenBytes(SmallFileBytes());
    const CRawDataIndex& index = *m_reader.GetIndex();
    ASSERT_EQ(index.GetCount(), 1);
    EXPECT_EQ(index.GetEntry(0)->TaskName, "CompoundTest");
    EXPECT_EQ(index.GetEntry(0)->Recording, 1);
    EXPECT_EQ(index.GetEntry(0)->Dose, 1000);
    EXPECT_EQ(index.GetEntry(1), nullptr);
    EXPECT_EQ(index.GetEntry(-1), nullptr);
}

TEST_F(ReaderTest, ListsAreInFileOrder) {
    m_io.GetRawDateWriter()->Open(m_path);
    m_io.GetRawDateWriter()->WriteFileHdr(ExampleFileHdr());
    const auto add = [&](const char* task, int number, std::int64_t dose, std::vector<CRawDataChannelInfo> wells) {
        CRawDataRecordingHdr header = ExampleRecordingHdr(task, number);
        header.Dose = dose;
        header.WellChannels = std::move(wells);
        m_io.GetRawDateWriter()->WriteRecordingHdr(header);
    };
    add("Series", 1, 50, {{.ID = 3}, {.ID = 4}});
    add("PreQC", 1, 0, {{.ID = 3}});
    add("Series", 1, 20, {{.ID = 4}, {.ID = 4}});
    add("Series", 2, 50, {{.ID = 3}});
    m_io.GetRawDateWriter()->Close();
    m_reader.Open(m_path);
    EXPECT_EQ(m_reader.GetTasks(), (std::vector<std::string>{"Series", "PreQC"}));
    EXPECT_EQ(m_reader.GetDoses("Series", 3), (std::vector<std::int64_t>{50, 50}));
    EXPECT_EQ(m_reader.GetDoses("Series", 4), (std::vector<std::int64_t>{50, 20, 20}));
    EXPECT_TRUE(m_reader.GetDoses("series", 3).empty());
    EXPECT_EQ(m_reader.GetWellIDs("Series", 1), (std::vector<std::int32_t>{3, 4, 4, 4}));
    EXPECT_TRUE(m_reader.GetWellIDs("PreQC", 2).empty());
    EXPECT_EQ(m_reader.GetWellIDs("no such task"), (std::vector<std::int32_t>{3, 4}));
    EXPECT_EQ(m_reader.GetRecordingHdr("Series", 1)->Dose, 50);
    EXPECT_EQ(m_reader.GetRecordingHdr("Series", 3), nullptr);
}

// Headers with equal lists are decoded once.
TEST_F(ReaderTest, EqualRecordingsHaveNoAuxiliaryChannelsOfAnother) {
    std::string bytes = FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650, .next = 3650}) +
                        RecordingHdrBytes({.recording = 2, .data = 6110, .next = 6110}) +
                        RecordingHdrBytes({.recording = 3, .data = 8570});
    bytes.replace(1190 + 1430, 1030,
                  Cell(30, "NumberOfAuxCh=1") + Cell(200, "AuxIDs=5") + Cell(200, "Ticks=10") +
                      Cell(400, "UnitsPerADs=2") + Cell(200, "ADZeros=3"));
    OpenBytes(bytes);
    const auto channels = [&](int recording) {
        return m_reader.GetRecordingHdr("CompoundTest", recording)->AuxChannels.size();
    };
    EXPECT_EQ(channels(1), 1U);
    EXPECT_EQ(channels(2), 0U);
    EXPECT_EQ(channels(3), 0U);
}

TEST_F(ReaderTest, DuplicateRecordingsUseTheFirstHeaderAndTheLastFinishedData) {
    const auto twin = [](std::int64_t data, std::int64_t next, const char* wells) {
        return RecordingHdrBytes({.data = data, .next = next, .wellIDs = wells});
    };
    OpenBytes(FileHdrBytes(1190) + twin(3650, 3958, "=11:12") + SegmentHdrBytes(11, -1, 0, 300, "4") +
              SampleBytes(kWell11) + twin(6418, 6726, "=21:22") + SegmentHdrBytes(12, -1, 0, 300, "4") +
              SampleBytes(kWell12) + twin(-1, -1, "=31:32"));
    EXPECT_EQ(m_reader.GetRecordingHdr("CompoundTest", 1)->WellChannels[0].ID, 11);
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));  // the third isn't finished
    EXPECT_EQ(SegmentsOf(m_reader), "12[0..300]7,8,9,10 end");
}

TEST_F(ReaderTest, SelectionOfAWellSurvivesJumpsAndOpens) {
    m_io.GetRawDateWriter()->Open(m_path);
    m_io.GetRawDateWriter()->WriteFileHdr(ExampleFileHdr());
    m_io.GetRawDateWriter()->WriteRecordingHdr(ExampleRecordingHdr());
    // Each segment has another length, so that no guess about the next one is right.
    const std::vector<std::uint16_t> samples = {1, 2, 3, 4, 5};
    for (int i = 0; i < 5; ++i)
        m_io.GetRawDateWriter()->WriteData(11 + i % 2, i * 10, i * 10 + i, 1, samples.data());
    m_io.GetRawDateWriter()->Close();
    m_reader.Open(m_path);
    m_reader.SelectWellID(12);
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    EXPECT_EQ(SegmentsOf(m_reader, 1), "12[10..11]1,2");
    m_reader.SelectWellID(-1);
    EXPECT_EQ(SegmentsOf(m_reader), "11[20..22]1,2,3 12[30..33]1,2,3,4 11[40..44]1,2,3,4,5 end");
    m_reader.SelectWellID(11);
    m_reader.Open(m_path);
    EXPECT_EQ(SegmentsOf(m_reader), "end");  // opening resets the position
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    EXPECT_EQ(SegmentsOf(m_reader), "11[0..0]1 11[20..22]1,2,3 11[40..44]1,2,3,4,5 end");

    m_reader.SelectWellID(99);
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    std::int32_t wellID = 0;
    std::int64_t from = 77;
    std::int64_t to = 78;
    std::uint32_t size = 79;
    std::uint16_t* data = nullptr;
    EXPECT_FALSE(m_reader.ReadSegment(wellID, from, to, size, data));
    EXPECT_EQ(wellID, 11);  // the last one skipped
    EXPECT_TRUE(from == 77 && to == 78 && size == 79 && data == nullptr);
    m_reader.SelectWellID(-1);
    EXPECT_EQ(SegmentsOf(m_reader), "end");
}

TEST_F(ReaderTest, EqualSegmentsShareOneBuffer) {
    OpenBytes(SmallFileBytes());
    ASSERT_TRUE(m_reader.JumpToData("CompoundTest", 1));
    auto [wellID, time, unused, size, first] = CNextSegment();
    std::uint16_t* second = nullptr;
    ASSERT_TRUE(m_reader.ReadSegment(wellID, time, time, size, first));
    ASSERT_TRUE(m_reader.ReadSegment(wellID, time, time, size, second));
    EXPECT_EQ(first, second);
    EXPECT_EQ(first[0], 7);
}

TEST_F(ReaderTest, UnfinishedLastRecordingIsListedButNotDelivered) {
    auto& writer = *m_io.GetRawDateWriter();
    writer.Open(m_path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr("PreQC", 1));
    writer.WriteData(11, 0, 300, 100, kWell11.data());
    writer.WriteRecordingHdr(ExampleRecordingHdr("PostQC", 1));
    writer.WriteData(12, 0, 300, 100, kWell12.data());
    m_reader.Open(m_path);  // while it is being written
    EXPECT_EQ(m_reader.GetTasks(), (std::vector<std::string>{"PreQC", "PostQC"}));
    EXPECT_FALSE(m_reader.JumpToData("PostQC", 1));
    ASSERT_TRUE(m_reader.JumpToData("PreQC", 1));
    EXPECT_EQ(SegmentsOf(m_reader), "11[0..300]1,256,65535,32768 end");
    writer.Close();
    m_reader.Open(m_path);
    ASSERT_TRUE(m_reader.JumpToData("PostQC", 1));
    EXPECT_EQ(SegmentsOf(m_reader), "12[0..300]7,8,9,10 end");
}

TEST_F(ReaderTest, OpeningReplacesTheListsOfTheFileBefore) {
    auto& writer = *m_io.GetRawDateWriter();
    writer.Open(m_path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.UpdateFileHdr("PreQC", {"7", "8"});
    writer.WriteRecordingHdr(ExampleRecordingHdr("PreQC", 1));
    writer.Close();
    for (int i = 0; i < 2; ++i) {
        m_reader.Open(m_path);
        EXPECT_EQ(m_reader.GetFileHdr()->PreQC, (std::vector<std::int64_t>{7, 8}));
    }
    OpenBytes(SmallFileBytes());
    EXPECT_TRUE(m_reader.GetFileHdr()->PreQC.empty());
}

TEST_F(ReaderTest, OtherFilesAreRefusedWithTheirText) {
    const auto refusal = [&](const std::string& bytes) { return TextOfFailure([&] { OpenBytes(bytes); }); };
    const std::string ours = SmallFileBytes();
    EXPECT_EQ(TextOfFailure([&] { m_reader.Open(m_path); }), "Cannot open file " + m_path);
    EXPECT_EQ(TextOfFailure([&] { m_reader.Open(m_folder.Path(".")); }), "Cannot open file " + m_folder.Path("."));
    EXPECT_EQ(refusal(""), "Opened file is not a Vexaprobe file.");
    EXPECT_EQ(refusal(ours.substr(0, 49)), "Opened file is not a Vexaprobe file.");
    EXPECT_EQ(refusal(" " + ours), "Opened file is not a Vexaprobe file.");
    EXPECT_EQ(refusal("OVL Vexaprob" + ours.substr(12).replace(0, 1, "E")), "Opened file is not a Vexaprobe file.");
    EXPECT_EQ(refusal(FileHdrBytes(-1)), "Opened file is empty.");
    EXPECT_EQ(refusal(FileHdrBytes(1190)), "Error reading Recording Header");
    EXPECT_EQ(refusal(FileHdrBytes(1191) + ours.substr(1190)), "Error reading Recording Header");
    EXPECT_EQ(refusal(FileHdrBytes(-2) + ours.substr(1190)), "Error reading Recording Header");
    OpenBytes(Cell(50, "OVL Vexaprobe 2.1=x:y") + ours.substr(50));
    EXPECT_EQ(m_reader.GetFileHdr()->HeaderID, "OVL Vexaprobe 2.1=x:y");
}

}  // namespace
