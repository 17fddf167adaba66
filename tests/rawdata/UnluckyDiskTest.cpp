#if defined(__unix__)

#include <gtest/gtest.h>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TempFolder.h"

namespace {

/// Returns all segments of all recordings, or the text of the failure to open.
std::string ContentOf(const std::string& path) {
    CIRawDataReader reader;
    const std::string failure = TextOfFailure([&] { reader.Open(path); });
    if (failure != "no failure") return failure;
    std::string content;
    for (int i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        content += entry.TaskName + ": ";
        content += reader.JumpToData(entry.TaskName, entry.Recording) ? SegmentsOf(reader) + "; " : "unreachable; ";
    }
    return content;
}

/// Writes two recordings of two segments each. The disk is full from offset `fullFrom` until step `freeAgain`.
void PlayRun(const std::string& path, std::size_t fullFrom, int freeAgain) {
    CIRawDataWriter writer;
    writer.Open(path);
    auto disk = std::make_unique<CFullDisk>(fullFrom);
    auto step = [&, next = 0](auto call) mutable {
        if (next++ == freeAgain) disk.reset();
        call();
    };
    step([&] { writer.WriteFileHdr(ExampleFileHdr()); });
    step([&] { writer.WriteRecordingHdr(ExampleRecordingHdr("PreQC")); });
    step([&] { writer.WriteData(11, 0, 300, 100, kWell11.data()); });
    step([&] { writer.WriteData(12, 0, 300, 100, kWell12.data()); });
    step([&] { writer.WriteRecordingHdr(ExampleRecordingHdr("PostQC")); });
    step([&] { writer.UpdateFileHdr("CompoundTest", {"1000", "2000"}); });
    step([&] { writer.WriteData(11, 1, 301, 100, kWell11.data()); });
    step([&] { writer.WriteData(12, 1, 301, 100, kWell12.data()); });
    step([&] { writer.Close(); });
}

// The offsets at which the writes begin and end, and the content that is readable when the disk is full there.
TEST(UnluckyDiskTest, FullDiskKeepsWhatWasWholeAndNothingElse) {
    const CTempFolder folder;
    const std::string path = folder.Path("full.vxd");
    const std::string pre1 = "PreQC: 11[0..300]1,256,65535,32768 ";
    const std::string pre = pre1 + "12[0..300]7,8,9,10 end; ";
    const std::string post1 = "PostQC: 11[1..301]1,256,65535,32768 ";
    const std::string badSegment = "Error reading Data Segment Header; ";
    const struct {
        std::size_t upTo;
        std::string content;
    } stages[] = {
        {1190, "Opened file is not a Vexaprobe file."},
        {3650, "Opened file is empty."},
        {3958, "PreQC: " + badSegment},
        {4266, pre1 + "end; "},
        {6726, pre},
        {7034, pre + "PostQC: " + badSegment},
        {7342, pre + post1 + "end; "},
        {7343, pre + post1 + "12[1..301]7,8,9,10 end; "},
    };
    std::size_t size = 0;
    for (const auto& stage : stages) {
        const std::size_t whole = size;
        for (; size < stage.upTo; size += size % 50 == 0 ? 1 : 49) {
            PlayRun(path, size, 99);
            ASSERT_EQ(ContentOf(path), stage.content) << "full from " << size;
            ASSERT_EQ(std::filesystem::file_size(path), whole) << "truncated after the last whole write";
        }
        size = stage.upTo;
    }
}

TEST(UnluckyDiskTest, RefusedBytesAreWrittenOnceThereIsRoom) {
    const CTempFolder folder;
    const std::string path = folder.Path("again.vxd");
    PlayRun(path, std::size_t{1} << 30, 99);
    const std::string whole = ReadAll(path);

    PlayRun(path, 700, 1);  // the file header is written before the first recording
    EXPECT_EQ(ReadAll(path), whole);
    PlayRun(path, 2000, 2);  // a recording header, before its first segment
    EXPECT_EQ(ReadAll(path), whole);
    PlayRun(path, 5000, 6);
    EXPECT_EQ(ReadAll(path), whole);
    PlayRun(path, 700, 6);  // the refused recording is dropped; the list set meanwhile is kept
    const std::string late = ReadAll(path);
    EXPECT_EQ(late.substr(0, 1190), FileHdrBytes(1190, "CompoundTest=1000:2000"));
    EXPECT_EQ(ContentOf(path), "PostQC: 11[1..301]1,256,65535,32768 12[1..301]7,8,9,10 end; ");
    PlayRun(path, 3800, 3);  // the next segment takes the lost one's place
    EXPECT_EQ(ReadAll(path).substr(3650, 308), SegmentHdrBytes(12, -1, 0, 300, "4") + SampleBytes(kWell12));
    PlayRun(path, 6800, 8);
    EXPECT_EQ(ContentOf(path),
              "PreQC: 11[0..300]1,256,65535,32768 12[0..300]7,8,9,10 end; PostQC: Error reading Data Segment Header; ");
}

TEST(UnluckyDiskTest, RefusedRewriteIsRepeatedWithTheNextOneAndTheNewestWins) {
    const CTempFolder folder;
    const std::string path = folder.Path("rewrite.vxd");
    CIRawDataWriter writer;
    BeginExample(writer, path);
    {
        const CFullDisk disk(600);  // the lists at 640 and 790 are refused
        writer.UpdateFileHdr("CompoundTest", {"7"});
        writer.UpdateFileHdr("PostQC", {"8"});
        writer.UpdateFileHdr("CompoundTest", {"1000", "2000"});
    }
    EXPECT_EQ(ReadAll(path), FileHdrBytes(1190) + RecordingHdrBytes({}));
    writer.UpdateFileHdr("PostQC", {});
    EXPECT_EQ(ReadAll(path), FileHdrBytes(1190, "CompoundTest=1000:2000") + RecordingHdrBytes({}));
    writer.Close();
    EXPECT_EQ(ReadAll(path), FileHdrBytes(1190, "CompoundTest=1000:2000") + RecordingHdrBytes({.data = 3650}));
}

TEST(UnluckyDiskTest, WriteErrorStatesTheFirstRefusalAndHowManySegmentsAreMissing) {
    const CTempFolder folder;
    const std::string path = folder.Path("reported.vxd");
    CIRawDataWriter writer;
    EXPECT_EQ(writer.GetWriteError(), "");
    BeginExample(writer, path);
    writer.WriteData(11, 0, 300, 100, kWell11.data());
    EXPECT_EQ(writer.GetWriteError(), "");
    const std::string first = "File too large, writing 308 bytes at 3958 of " + path;
    {
        const CFullDisk disk(4000);
        writer.WriteData(12, 0, 300, 100, kWell12.data());
        EXPECT_EQ(writer.GetWriteError(), first + "; segments missing: 1");
        writer.WriteData(12, 1, 301, 100, kWell12.data());
        writer.WriteRecordingHdr(ExampleRecordingHdr("PostQC"));
        writer.WriteData(12, 2, 302, 100, kWell12.data());
    }
    writer.WriteData(11, 3, 303, 100, kWell11.data());
    EXPECT_EQ(writer.GetWriteError(), first + "; segments missing: 3");
    writer.Close();
    EXPECT_EQ(writer.GetWriteError(), first + "; segments missing: 3");
    EXPECT_EQ(ContentOf(path),
              "CompoundTest: 11[0..300]1,256,65535,32768 end; PostQC: 11[3..303]1,256,65535,32768 end; ");

    EXPECT_THROW(writer.Open(folder.Path("missing/a.vxd")), CExcVXReader);
    EXPECT_EQ(writer.GetWriteError(), "No such file or directory, opening " + folder.Path("missing/a.vxd"));
    writer.Open(path);
    EXPECT_EQ(writer.GetWriteError(), "");
    {
        const CFullDisk disk(0);
        writer.WriteFileHdr(ExampleFileHdr());
    }
    writer.Close();  // tries the header again
    EXPECT_EQ(writer.GetWriteError(), "File too large, writing 1190 bytes at 0 of " + path);
    EXPECT_EQ(ReadAll(path), FileHdrBytes(-1, "CompoundTest"));
}

TEST(UnluckyDiskTest, RefusedBytesOfOneFileDoNotGoIntoTheNext) {
    const CTempFolder folder;
    CIRawDataWriter writer;
    {
        const CFullDisk disk(0);
        BeginExample(writer, folder.Path("refused.vxd"));
        writer.UpdateFileHdr("PreQC", {"1"});
        writer.Close();
    }
    writer.Open(folder.Path("next.vxd"));
    writer.Close();
    EXPECT_EQ(ReadAll(folder.Path("refused.vxd")), "");
    EXPECT_EQ(ReadAll(folder.Path("next.vxd")), "");

    writer.Open(folder.Path("refused.vxd"));
    writer.WriteFileHdr(ExampleFileHdr());
    {
        const CFullDisk disk(600);
        writer.UpdateFileHdr("CompoundTest", {"7"});
        writer.Close();
    }
    BeginExample(writer, folder.Path("next.vxd"));
    writer.Close();
    EXPECT_EQ(ReadAll(folder.Path("next.vxd")), FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}));
}

}  // namespace

#endif
