#if defined(__unix__)

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TempFolder.h"

namespace {

/// Returns all segments of all recordings, or the text of the failure to open.
std::string ContentOf(const std::string& path) {
    CVXFileIO io;
    CIRawDataReader& reader = *io.GetRawDataReader();
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
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
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
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr());
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
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    EXPECT_EQ(writer.GetWriteError(), "");
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr());
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
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    {
        const CFullDisk disk(0);
        writer.Open(folder.Path("refused.vxd"));
        writer.WriteFileHdr(ExampleFileHdr());
        writer.WriteRecordingHdr(ExampleRecordingHdr());
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
    writer.Open(folder.Path("next.vxd"));
    writer.WriteFileHdr(ExampleFileHdr());
    writer.WriteRecordingHdr(ExampleRecordingHdr());
    writer.Close();
    EXPECT_EQ(ReadAll(folder.Path("next.vxd")), FileHdrBytes(1190) + RecordingHdrBytes({.data = 3650}));
}

/// A number shared between processes.
class CSharedNumber {
 public:
    CSharedNumber()
        : m_memory(mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
          m_number(new (m_memory) Number(0)) {}
    ~CSharedNumber() { munmap(m_memory, sizeof(Number)); }
    CSharedNumber(const CSharedNumber&) = delete;
    CSharedNumber& operator=(const CSharedNumber&) = delete;

    std::int64_t Get() const { return *m_number; }
    void Set(std::int64_t value) { *m_number = value; }

 private:
    using Number = std::atomic<std::int64_t>;

    void* m_memory;
    Number* m_number;
};

constexpr int kPerRecording = 20;
constexpr int kPerSegment = 500;

/// Returns the samples of segment n: all are n.
std::vector<std::uint16_t> EndlessSamples(std::int64_t n) {
    return std::vector<std::uint16_t>(kPerSegment, static_cast<std::uint16_t>(n));
}

/// Writes segments of well 7 until killed, and reports how many were accepted.
[[noreturn]] void WriteForEver(const std::string& path, CSharedNumber& taken) {
    CVXFileIO io;
    CIRawDataWriter& writer = *io.GetRawDateWriter();
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    for (std::int64_t n = 0;; taken.Set(++n)) {
        const auto recording = static_cast<std::int32_t>(n / kPerRecording);
        if (n % kPerRecording == 0) writer.WriteRecordingHdr(ExampleRecordingHdr("Series", recording));
        writer.WriteData(7, n, n + kPerSegment - 1, 1, EndlessSamples(n).data());
    }
}

/// Returns how many segments from the first on are at their offsets, with headers and all samples.
std::int64_t SegmentsInPlace(const std::string& bytes) {
    for (std::int64_t n = 0;; ++n) {
        const auto at = static_cast<std::size_t>(1190 + 2460 * (n / kPerRecording + 1) + n * (300 + 2 * kPerSegment));
        const std::string wanted = SampleBytes(EndlessSamples(n));
        const bool isThere = bytes.size() >= at + 300 + wanted.size() && bytes.compare(at, 9, "Type=Well") == 0 &&
                             bytes.compare(at + 300, wanted.size(), wanted) == 0;
        if (!isThere) return n;
    }
}

// Whenever the writer is killed, each accepted segment is in the file, and every recording but the last is readable.
TEST(UnluckyDiskTest, KilledWriterLosesNoAcceptedSegment) {
    const CTempFolder folder;
    const std::string path = folder.Path("killed.vxd");
    std::int64_t delivered = 0;
    for (int round = 0; round < 40; ++round) {
        std::filesystem::remove(path);
        CSharedNumber taken;
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) WriteForEver(path, taken);
        std::this_thread::sleep_for(std::chrono::microseconds(2000 + 377 * round));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        ASSERT_TRUE(taken.Get() == 0 || SegmentsInPlace(ReadAll(path)) >= taken.Get());

        CVXFileIO io;
        CIRawDataReader& reader = *io.GetRawDataReader();
        const std::string failure = TextOfFailure([&] { reader.Open(path); });
        if (failure != "no failure") continue;  // killed before there was a recording
        const std::int32_t recordings = reader.GetIndex()->GetCount();
        std::int64_t expected = 0;
        for (std::int32_t r = 0; r < recordings; ++r) {
            // The last recording may be unfinished.
            if (!reader.JumpToData("Series", r)) {
                EXPECT_EQ(r, recordings - 1);
                continue;
            }
            auto [wellID, from, to, size, samples] = CNextSegment();
            while (reader.ReadSegment(wellID, from, to, size, samples)) {
                ASSERT_EQ(from, expected);
                ASSERT_EQ(to, expected + kPerSegment - 1);
                ASSERT_EQ(std::vector<std::uint16_t>(samples, samples + size), EndlessSamples(expected));
                ++expected;
            }
            EXPECT_EQ(expected % kPerRecording, 0) << "a finished recording lost segments";
        }
        delivered += expected;
    }
    EXPECT_GT(delivered, 0);
}

}  // namespace

#endif
