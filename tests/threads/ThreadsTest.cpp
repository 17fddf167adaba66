#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <atomic>
#include <cstdint>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "tests/access/SamplesOf.h"
#include "tests/faults/Plays.h"
#include "tests/rawdata/SegmentsOf.h"
#include "tests/support/TempFolder.h"

#if defined(__unix__)
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

// ---- Recordings whose content follows from their numbers ------------------------------------------------------------

constexpr std::int64_t kTick = 10;

std::uint16_t SampleAt(std::int32_t well, std::int64_t time) {
    return static_cast<std::uint16_t>(7919 * well + 31 * (time / kTick));
}

struct CPlannedSegment {
    std::int32_t well;
    std::int64_t from;
    std::int64_t to;
};

/// Returns the segments of a recording: their number, wells and lengths vary.
std::vector<CPlannedSegment> SegmentsOf(std::int32_t recording) {
    std::vector<CPlannedSegment> segments;
    for (std::int32_t i = 0; i <= recording % 7; ++i) {
        const std::int64_t from = std::int64_t{recording} * 1'000'000 + i * 5000;
        segments.push_back({10 + i % 4, from, from + kTick * ((13 * recording + 7 * i) % 300)});
    }
    return segments;
}

void WriteRecording(CIRawDataWriter& writer, std::int32_t recording) {
    CRawDataRecordingHdr header{.TaskName = "Series", .Recording = recording};
    header.WellChannels = {{10, 0, 1.0, kTick}, {11, 0, 1.0, kTick}, {12, 0, 1.0, kTick}, {13, 0, 1.0, kTick}};
    writer.WriteRecordingHdr(header);
    for (const auto& [well, from, to] : SegmentsOf(recording)) {
        std::vector<std::uint16_t> samples;
        for (std::int64_t time = from; time <= to; time += kTick)
            samples.push_back(SampleAt(well, time));
        writer.WriteData(well, from, to, kTick, samples.data());
    }
}

/// Returns whether a recording is in the file with all its segments and samples.
bool IsWhole(CIRawDataReader& reader, std::int32_t recording) {
    if (!reader.JumpToData("Series", recording)) return false;
    auto [well, from, to, size, samples] = CNextSegment();
    for (const auto& planned : SegmentsOf(recording)) {
        if (!reader.ReadSegment(well, from, to, size, samples)) return false;
        if (well != planned.well || from != planned.from || to != planned.to || size != (to - from) / kTick + 1)
            return false;
        for (std::uint32_t i = 0; i < size; ++i)
            if (samples[i] != SampleAt(well, from + i * kTick)) return false;
    }
    return !reader.ReadSegment(well, from, to, size, samples);
}

// ---- A reader next to a writer --------------------------------------------------------------------------------------

/// The progress of writer and reader, through which they synchronise. May be in memory shared by two processes.
struct CProgress {
    std::atomic<std::int32_t> finished = 0;  ///< Number of finished recordings, over all files.
    std::atomic<std::int32_t> opens = 0;     ///< Number of times that the reader has opened a file.
};

constexpr std::int32_t kOpens = 2000;  ///< Per test.
constexpr std::int32_t kRecordingsPerFile = 50;

std::string FileOf(const CTempFolder& folder, std::int32_t recording) {
    return folder.Path("run" + std::to_string(recording / kRecordingsPerFile) + ".vxd");
}

/// Writes one file after another, at most a few recordings ahead of the reader, so that most files are read while they
/// are written.
void WriteBesideReader(const CTempFolder& folder, CProgress& progress) {
    CIRawDataWriter writer;
    for (std::int32_t recording = 0; progress.opens < kOpens; ++recording) {
        while (recording > progress.opens + 3)
            std::this_thread::yield();
        if (recording % kRecordingsPerFile == 0) {
            writer.Open(FileOf(folder, recording));
            writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
        }
        WriteRecording(writer, recording);
        writer.UpdateFileHdr("CompoundTest", {std::to_string(recording)});
        if ((recording + 1) % kRecordingsPerFile == 0) writer.Close();
        progress.finished = (recording + 1) % kRecordingsPerFile == 0 ? recording + 1 : recording;
    }
}

void ReadBesideWriter(const CTempFolder& folder, CProgress& progress) {
    CIRawDataReader reader;
    for (std::int32_t open = 0; open < kOpens && !testing::Test::HasFailure(); ++open) {
        std::int32_t finished = 0;
        while ((finished = progress.finished) == 0)
            std::this_thread::yield();
        const std::int32_t last = finished - 1;
        const std::int32_t first = last - last % kRecordingsPerFile;
        ASSERT_NO_THROW(reader.Open(FileOf(folder, last))) << "at open " << open;
        ASSERT_GE(reader.GetIndex()->GetCount(), last - first + 1) << "at open " << open;
        for (std::int32_t i = 0; i < reader.GetIndex()->GetCount(); ++i)
            ASSERT_EQ(reader.GetIndex()->GetEntry(i)->Recording, first + i);
        for (const std::int32_t recording : {last, (last + first) / 2, first + open % (last - first + 1)})
            ASSERT_TRUE(IsWhole(reader, recording)) << recording << " of " << finished << " at open " << open;
        ++progress.opens;
    }
    progress.opens = kOpens;  // lets the writer finish, even after a failure
}

/// Runs `write` in a thread, and then in a process of its own, each time with `read` beside it.
template <class Write, class Read>
void InAThreadAndInAProcess(Write write, Read read) {
    {
        const CTempFolder folder;
        CProgress progress;
        std::thread writer([&] { write(folder, progress); });
        read(folder, progress);
        progress.opens = kOpens;
        writer.join();
    }
#if defined(__unix__)
    const CTempFolder folder;
    void* const shared = mmap(nullptr, sizeof(CProgress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    CProgress& progress = *new (shared) CProgress;
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        write(folder, progress);
        _exit(0);
    }
    read(folder, progress);
    progress.opens = kOpens;
    int status = -1;
    EXPECT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_EQ(status, 0);
    munmap(shared, sizeof(CProgress));
#endif
}

TEST(ThreadsTest, ReaderBesideAWriterSeesWhatWasFinished) {
    InAThreadAndInAProcess(WriteBesideReader, ReadBesideWriter);
}

// ---- Bulk access ----------------------------------------------------------------------------------------------------

TEST(ThreadsTest, OneFileIndexAndSelectionServeManyThreads) {
    const CTempFolder folder;
    constexpr std::int32_t kRecordings = 7;
    CIRawDataWriter writer;
    writer.Open(folder.Path("run.vxd"));
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
    for (std::int32_t recording = 0; recording < kRecordings; ++recording)
        WriteRecording(writer, recording + 20);
    writer.Close();
    const CRawDataFile file(folder.Path("run.vxd"));
    const CRecordingIndex index = file.ReadIndex(6);
    const CSampleSelection selection = index.Select();
    std::vector<std::vector<std::uint16_t>> alone;
    for (std::size_t i = 0; i < kRecordings; ++i)
        alone.push_back(SamplesOf(file.ReadIndex(i).Select()));
    std::atomic<int> different = 0;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t round = 0; round < 50; ++round) {
                const std::size_t other = (thread + round) % kRecordings;
                different += SamplesOf(selection) != alone[6] ? 1 : 0;
                different += SamplesOf(index.Select({.WellIDs = {10, 11, 12, 13}})) != alone[6] ? 1 : 0;
                different += SamplesOf(file.ReadIndex(other).Select()) != alone[other] ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(different, 0);
}

constexpr std::int64_t kSegments = 3000;

/// Writes a recording without finishing it, at most a few segments ahead of the reader.
void WriteUnfinished(const CTempFolder& folder, CProgress& progress) {
    CIRawDataWriter writer;
    writer.Open(folder.Path("run.vxd"));
    writer.WriteFileHdr({.HeaderID = "OVL Vexaprobe", .FileVersion = 2});
    WriteRecording(writer, 0);
    for (std::int32_t i = 1; i < kSegments && progress.opens < kOpens; ++i) {
        std::vector<std::uint16_t> samples;
        for (std::int64_t time = 0; time <= i * 7 % 900; ++time)
            samples.push_back(SampleAt(10 + i % 4, kTick * time));
        writer.WriteData(10 + i % 4, 0, kTick * (i * 7 % 900), kTick, samples.data());
        progress.finished = i + 1;
    }
    while (progress.opens < kOpens)
        std::this_thread::yield();
}

/// Reads the recording again and again while it grows.
void ReadUnfinished(const CTempFolder& folder, CProgress& progress) {
    while (progress.finished == 0)
        std::this_thread::yield();
    const CRawDataFile file(folder.Path("run.vxd"));
    for (std::int64_t finished = 0; finished < kSegments && !testing::Test::HasFailure();) {
        finished = progress.finished;
        const CRecordingIndex index = file.ReadIndex(0, {.Unfinished = true});
        ASSERT_GE(index.GetSegmentCount(), static_cast<std::size_t>(finished));
        for (std::int64_t i = 1; i < static_cast<std::int64_t>(index.GetSegmentCount()); ++i) {
            const CSegmentInfo segment = index.GetSegment(static_cast<std::size_t>(i));
            ASSERT_EQ(segment.WellID, 10 + i % 4);
            ASSERT_EQ(segment.Samples, i * 7 % 900 + 1);
        }
        const CSampleSelection selection = index.Select({.WellIDs = {11}});
        const std::vector<std::uint16_t> samples = SamplesOf(selection);
        for (const CSampleRun& run : selection.GetWells()[0].Runs) {
            for (std::uint64_t i = 0; i < run.Samples; ++i)
                ASSERT_EQ(samples[run.Offset + i], SampleAt(11, run.TimeFrom + static_cast<std::int64_t>(i) * kTick));
        }
    }
}

TEST(ThreadsTest, UnfinishedRecordingIsReadBesideAWriter) { InAThreadAndInAProcess(WriteUnfinished, ReadUnfinished); }

// ---- Separate objects -----------------------------------------------------------------------------------------------

/// Writes and reads a file of each kind. Returns all bytes, without a date of writing, and what was read.
std::string EveryKindOfFile() {
    const CTempFolder folder;
    std::string all;
    for (const CKind& kind : AllKinds()) {
        const std::string path = folder.Path(kind.file);
        CVXFileIO io;
        for (const auto& step : kind.steps(io, path))
            step();
        all += BytesOf(path) + kind.writeError(io) + (kind.read == nullptr ? "" : kind.read(io, path));
    }
    return all;
}

TEST(ThreadsTest, ObjectsOfTheirOwnWorkSideBySide) {
    constexpr int kThreads = 8;
#if defined(VXFILEIO_FEWER_CASES)
    constexpr int kRounds = 1;
#else
    constexpr int kRounds = 5;
#endif
    const std::string alone = EveryKindOfFile();
    EXPECT_NE(alone.find("0 1 2 3 4 5 "), std::string::npos) << "the segments that were read";
    std::atomic<int> different = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round)
                different += EveryKindOfFile() != alone ? 1 : 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(different, 0);
}

}  // namespace
