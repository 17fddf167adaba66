#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

#include "recovery/Recover.h"
#include "tests/faults/Disk.h"
#include "tests/faults/Plays.h"
#include "tests/faults/SystemCalls.h"
#include "tests/rawdata/ExampleHdrs.h"
#include "tests/recovery/StringInput.h"
#include "tests/support/TempFolder.h"
#include "vxfileio/helpers/ReplacingFile.h"
#include "vxfileio/rawdata/HeaderCodec.h"

/// @file
/// Records runs, then builds and checks each file that a power cut during the run could leave. To show that every flush
/// is needed, each is also left out in turn: some state must then break the promise.

namespace {

using vxfileio::helpers::CReplacingFile;
using vxfileio::recovery::CReport;

constexpr const char* kFlushes = "fdatasync fsync";

/// The name of an acknowledgement, which is recorded between the system calls of a run.
constexpr const char* kAcknowledged = "acknowledged";

/// A run: its system calls, and its acknowledgements that something is on the disk.
class CRun {
 public:
    /// Records the calls of `play`, without flush number `leftOut`. Flushes are numbered from 1; 0 leaves none out.
    CRun(int leftOut, const std::function<void(CRun&)>& play) {
        RecordCalls(&m_calls);
        BeginCalls(leftOut, {.kind = CFault::enKind::Skipped, .calls = kFlushes});
        play(*this);
        m_flushes = EndCalls();
        RecordCalls(nullptr);
    }

    /// Notes that this much has been acknowledged.
    void Acknowledge(std::int64_t what) { m_calls.push_back({.name = kAcknowledged, .offset = what}); }

    int Flushes() const { return m_flushes; }

    /// Calls `check(state, acknowledged)` for the states in which a power cut could leave a file. `state` is null if
    /// the file doesn't exist; `acknowledged` is -1 if nothing was acknowledged. Checks at most `most` states between
    /// two flushes, each once. Returns the first complaint of `check`, or an empty text.
    ///
    /// A state stays possible until the next flush, so it's enough to look before each flush.
    std::string Explore(CDisk disk, const std::string& path, std::size_t most,
                        const std::function<std::string(const std::string*, std::int64_t)>& check) {
        std::string broken;
        std::int64_t acknowledged = -1;
        std::unordered_set<std::string> seen;
        const auto examine = [&] {
            const auto look = [&](const std::string* state) {
                const std::string key = std::to_string(acknowledged) + ":" + (state == nullptr ? "" : "+" + *state);
                if (broken.empty() && seen.insert(key).second) broken = check(state, acknowledged);
            };
            for (const CFileOnDisk* const file : disk.FilesOf(path)) {
                if (file == nullptr) {
                    look(nullptr);
                } else {
                    file->ForStates(most, [&](const std::string& state) { look(&state); });
                }
            }
        };
        for (const CRecordedCall& call : m_calls) {
            const bool isAcknowledged = call.name == kAcknowledged;
            if (isAcknowledged || std::string_view(kFlushes).find(call.name) != std::string_view::npos) examine();
            if (isAcknowledged) {
                acknowledged = call.offset;
            } else {
                disk.Apply(call);
            }
        }
        examine();
        m_states += seen.size();
        return broken;
    }

    std::size_t States() const { return m_states; }

 private:
    std::vector<CRecordedCall> m_calls;
    int m_flushes = 0;
    std::size_t m_states = 0;
};

// ---- Raw data -------------------------------------------------------------------------------------------------------

struct CSegment {
    std::int32_t recording = 0;
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::vector<std::uint16_t> samples;

    auto Times() const { return std::tuple(well, from, to); }
    bool operator==(const CSegment&) const = default;
};

/// The plan of a raw data file: the number of samples in each segment of each recording, and how often to flush.
struct CPlan {
    std::vector<std::vector<std::int64_t>> recordings;
    std::size_t flushEvery = 1;
    std::size_t mostStates = 0;
};

/// What was written, and where.
struct CWritten {
    std::vector<CSegment> segments;
    std::vector<std::int64_t> ends;  ///< Where each segment ends in the file.
};

constexpr std::int64_t kTick = 100;
constexpr std::size_t kFront = 50;           ///< The first cell of a file, which never changes.
constexpr std::int64_t kClosed = 1'000'000;  ///< Acknowledged: the whole file.

void Write(const CPlan& plan, const std::string& path, CRun& run, CWritten& written) {
    CIRawDataWriter writer;
    const auto flush = [&] {
        EXPECT_TRUE(writer.FlushToDisk()) << writer.GetWriteError();
        run.Acknowledge(static_cast<std::int64_t>(written.segments.size()));
    };
    std::mt19937 random(1);
    writer.Open(path);
    writer.WriteFileHdr(ExampleFileHdr());
    flush();
    std::int64_t end = 1190;
    std::int64_t time = 0;  // isn't reset between recordings, so that no two segments have the same times
    for (std::int32_t recording = 0; const auto& counts : plan.recordings) {
        writer.WriteRecordingHdr(ExampleRecordingHdr("Series", ++recording));
        end += 2460;
        for (std::int32_t well = 11; const std::int64_t count : counts) {
            CSegment segment{recording, well, time, time + (count - 1) * kTick, {}};
            std::generate_n(std::back_inserter(segment.samples), count, [&] { return 1 + random() % 0xFFFF; });
            writer.WriteData(well, segment.from, segment.to, kTick, segment.samples.data());
            time += 1'000'000;
            well = 23 - well;
            end += 300 + 2 * count;
            written.segments.push_back(std::move(segment));
            written.ends.push_back(end);
            if (written.segments.size() % plan.flushEvery == 0) flush();
        }
        writer.UpdateFileHdr("PreQC", {std::to_string(recording)});
    }
    writer.Close();
    EXPECT_EQ(writer.GetWriteError(), "");
    run.Acknowledge(kClosed);
}

/// Returns the segments of a sound file that has no gaps.
std::vector<CSegment> SegmentsIn(std::string_view bytes) {
    using namespace vxfileio::rawdata;
    std::vector<CSegment> segments;
    const CLayout& layout = LayoutOf(ExampleFileHdr().FileVersion);
    CRawDataRecordingHdr recording;
    for (std::size_t at = layout.file.size; at < bytes.size();) {
        const std::string_view rest = bytes.substr(at);
        if (layout.recording.Begins(rest)) {
            EXPECT_TRUE(Decode(layout, rest.substr(0, layout.recording.size), recording));
            at += layout.recording.size;
            continue;
        }
        CSegmentHdr header;
        Decode(layout, rest.substr(0, layout.segment.size), header);
        CSegment segment{recording.Recording, header.ID, header.TimeFrom, header.TimeTo, {}};
        segment.samples.resize(static_cast<std::size_t>(header.Size));
        const auto room = std::as_writable_bytes(std::span(segment.samples));
        at += layout.segment.size + room.size();
        EXPECT_LE(at, bytes.size());
        if (at > bytes.size()) break;
        std::memcpy(room.data(), bytes.data() + at - room.size(), room.size());
        segments.push_back(std::move(segment));
    }
    return segments;
}

/// Returns whether a recovered segment is the written one that ends at `end`, or may be and the report has a doubt at
/// that place. If the header of its recording was lost, it may be in a made-up recording, or in another one with a
/// doubt.
bool Explains(const CSegment& written, std::int64_t end, const CSegment& recovered, const CReport& report) {
    if (written == recovered) return true;
    if (written.Times() != recovered.Times() && written.samples != recovered.samples) return false;
    const std::int64_t begin = end - 300 - 2 * static_cast<std::int64_t>(written.samples.size());
    const auto isDoubt = [&](const auto& doubt) { return doubt.from < end && doubt.to > begin; };
    const auto isMadeUp = [&](const auto& recording) {
        return recording.number == recovered.recording && !recording.notes.empty();
    };
    const auto isOther = [&](const auto& doubt) {
        return doubt.reason == vxfileio::recovery::EReason::OtherRecording && doubt.from <= begin;
    };
    CSegment elsewhere = recovered;
    elsewhere.recording = written.recording;
    return std::ranges::any_of(report.doubts.first, isDoubt) ||
           (written == elsewhere &&
            (std::ranges::any_of(report.recordings, isMadeUp) || std::ranges::any_of(report.doubts.first, isOther)));
}

/// Returns how a state breaks the promise, or an empty text: an acknowledged segment is lost, or a segment that was
/// never written is recovered without a doubt.
std::string Broken(const CWritten& written, std::int64_t acknowledged, const std::string& state) {
    std::string saved;
    const CReport report = vxfileio::recovery::Recover(CStringInput(state), {}, [&](std::span<const std::byte> part) {
        saved.append(reinterpret_cast<const char*>(part.data()), part.size());
    });
    const auto name = [](const CSegment& segment) {
        return "recording " + std::to_string(segment.recording) + ", well " + std::to_string(segment.well) + " from " +
               std::to_string(segment.from);
    };
    const std::vector<CSegment> recovered = SegmentsIn(saved);
    for (std::size_t i = 0; static_cast<std::int64_t>(i) < acknowledged && i < written.segments.size(); ++i) {
        if (std::find(recovered.begin(), recovered.end(), written.segments[i]) == recovered.end())
            return "lost: " + name(written.segments[i]);
    }
    for (const CSegment& segment : recovered) {
        bool isExplained = false;
        for (std::size_t i = 0; i < written.segments.size() && !isExplained; ++i)
            isExplained = Explains(written.segments[i], written.ends[i], segment, report);
        if (!isExplained) return "wrong without a doubt: " + name(segment);
    }
    return {};
}

class CRawCrash {
 public:
    CRawCrash(CPlan plan, int leftOut = 0)
        : m_plan(std::move(plan)), m_run(leftOut, [this](CRun& run) { Write(m_plan, m_path, run, m_written); }) {}

    std::string Explore() {
        const std::string whole = ReadAll(m_path);
        return m_run.Explore({}, m_path, m_plan.mostStates, [&](const std::string* state, std::int64_t acknowledged) {
            if (state == nullptr) return std::string(acknowledged < 0 ? "" : "the file is gone");
            if (acknowledged == kClosed && *state != whole) return std::string("not the whole file");
            if (acknowledged >= 0 && !state->starts_with(whole.substr(0, kFront))) return std::string("no file header");
            return Broken(m_written, acknowledged, *state);
        });
    }

    const CRun& Run() const { return m_run; }

 private:
    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
    CPlan m_plan;
    CWritten m_written;
    CRun m_run;
};

constexpr std::size_t kAllStates = 100'000;
constexpr std::size_t kMostStates = 2000;

/// The first segment moves all that follows, so that page boundaries lie in different places.
CPlan SmallPlan(std::int64_t first) { return {{{first, 700, 40}, {30, 900}}, 2, kAllStates}; }

#if defined(VXFILEIO_FEWER_CASES)
constexpr std::size_t kLargeStates = 300;
#else
constexpr std::size_t kLargeStates = 3000;
#endif

/// Segments from a few samples to several pages.
CPlan LargePlan() {
    CPlan plan{{}, 9, kLargeStates};
    std::mt19937 random(3);
    for (std::size_t i = 0; i < 4; ++i) {
        auto& counts = plan.recordings.emplace_back();
        for (int segment = 0; segment < 15; ++segment)
            counts.push_back(1 + random() % (random() % 5 == 0 ? 6000 : 300));
    }
    return plan;
}

TEST(CrashStatesTest, EveryStateOfASmallRawDataFileHoldsWhatWasFlushed) {
    std::size_t states = 0;
    for (std::int64_t first = 1; first <= 2048; first += 89) {
        CRawCrash crash(SmallPlan(first));
        EXPECT_EQ(crash.Explore(), "") << "with " << first << " samples in the first segment";
        states += crash.Run().States();
    }
    RecordProperty("states", std::to_string(states));
    EXPECT_GT(states, 1000U);
}

TEST(CrashStatesTest, RandomStatesOfALargeRawDataFileHoldWhatWasFlushed) {
    CRawCrash crash(LargePlan());
    EXPECT_EQ(crash.Explore(), "");
    RecordProperty("states", std::to_string(crash.Run().States()));
    EXPECT_GE(crash.Run().States(), 10 * kLargeStates / 3);
}

TEST(CrashStatesTest, WithoutAnyOneFlushRawDataIsLost) {
    const int flushes = CRawCrash(SmallPlan(300)).Run().Flushes();
    EXPECT_EQ(flushes, 5);  // the file and its name, the file twice more, and when it is closed
    for (int leftOut = 1; leftOut <= flushes; ++leftOut)
        EXPECT_NE(CRawCrash(SmallPlan(300), leftOut).Explore(), "") << "without flush " << leftOut;
}

// ---- Files that replace others --------------------------------------------------------------------------------------

constexpr const char* kOld = "what was there before";

/// A way to replace files. `play` writes all files in a folder, and returns whether that was acknowledged.
struct CReplacing {
    std::string name;
    std::vector<std::string> files;  ///< The files that exist before.
    std::function<bool(const std::string& folder)> play;
};

bool PlayKind(const CKind& kind, const std::string& folder) {
    CVXFileIO io;
    for (const auto& step : kind.steps(io, folder + kind.file))
        step();
    return kind.writeError(io).empty();
}

/// Two files replace others, and a new one is in another folder.
bool PlaySeveral(const std::string& folder) {
    std::filesystem::create_directory(folder + "other");
    CReplacingFile files[3];
    std::vector<CReplacingFile*> all;
    for (CReplacingFile& file : files) {
        const std::string bytes(5000, static_cast<char>('a' + all.size()));
        const std::string path = folder + (all.size() < 2 ? "" : "other/") + bytes.front();
        if (!file.Create(path, CReplacingFile::ERule::Replace) ||
            !file.File().Append({std::as_bytes(std::span(bytes))}))
            return false;
        all.push_back(&file);
    }
    return CReplacingFile::CommitAll(all);
}

bool PlayNew(const std::string& folder) {
    CReplacingFile file;
    const std::string bytes(5000, 'n');
    return file.Create(folder + "new", CReplacingFile::ERule::New) &&
           file.File().Append({std::as_bytes(std::span(bytes))}) && file.Commit();
}

bool PlayWorkbook(const std::string& folder) {
    CResults results;
    const CPropAnalyzer analyzer;
    const CPropRecordPlate plate;
    CIResultsExport exporter;
    exporter.SetResults(&results);
    exporter.SetPropertyAnalyzer(&analyzer);
    exporter.SetPropertyRecordPlate(&plate);
    exporter.ExportExcel(folder + "one.xls");
    return exporter.GetWriteError().empty();
}

std::vector<CReplacing> Replacings() {
    std::vector<CReplacing> all = {
        {"several", {"a", "b"}, PlaySeveral}, {"new", {}, PlayNew}, {"workbook", {"one.xls"}, PlayWorkbook}};
    for (const CKind& kind : AllKinds()) {
        if (kind.isReplaced)
            all.push_back(
                {kind.name, {kind.file}, [&kind](const std::string& folder) { return PlayKind(kind, folder); }});
    }
    return all;
}

/// Returns how a state breaks the promise: each file is the old or the new one, and once acknowledged the new one.
std::string ExploreReplacing(const CReplacing& replacing, int leftOut, int& flushes) {
    const CTempFolder temp;
    const std::string folder = temp.Path("");
    for (const std::string& file : replacing.files)
        WriteAll(folder + file, kOld);
    CRun run(leftOut, [&](CRun& self) {
        if (replacing.play(folder)) self.Acknowledge(0);
    });
    flushes = run.Flushes();
    std::string broken;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().string();
        if (entry.is_directory()) continue;
        const bool isOld =
            std::find(replacing.files.begin(), replacing.files.end(), entry.path().filename()) != replacing.files.end();
        const std::string now = ReadAll(path);
        CDisk disk;
        for (const std::string& file : replacing.files)
            disk.Add(folder + file, kOld);
        broken += run.Explore(std::move(disk), path, kMostStates, [&](const std::string* state, std::int64_t done) {
            const bool isNew = state != nullptr && *state == now;
            const bool isKept = isOld ? state != nullptr && *state == kOld : state == nullptr;
            return isNew || (isKept && done < 0) ? std::string() : path + " is neither the old nor the new file";
        });
    }
    EXPECT_TRUE(leftOut > 0 || run.States() > 2);
    return broken;
}

class ReplacingCrashTest : public testing::TestWithParam<CReplacing> {};

TEST_P(ReplacingCrashTest, EveryStateIsTheOldFileOrTheNewOneAndLeavingOutAFlushShows) {
    int flushes = 0;
    EXPECT_EQ(ExploreReplacing(GetParam(), 0, flushes), "");
    ASSERT_GE(flushes, 2);
    for (int leftOut = 1; leftOut <= flushes; ++leftOut) {
        int ignored = 0;
        EXPECT_NE(ExploreReplacing(GetParam(), leftOut, ignored), "") << "without flush " << leftOut;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, ReplacingCrashTest, testing::ValuesIn(Replacings()),
                         [](const auto& kind) { return kind.param.name; });

// However many of the files have been moved.
TEST(SeveralFilesTest, AFailedStepBringsBackEveryOldFileAndLeavesNoNewOne) {
    const CTempFolder temp;
    const std::string folder = temp.Path("");
    for (const char* const name : {"a", "b"})
        WriteAll(folder + name, kOld);
    for (int at = 1; at <= 5; ++at) {  // three moves, and a flush of each folder
        BeginCalls(at, {.error = EIO, .calls = "rename fsync"});
        EXPECT_FALSE(PlaySeveral(folder));
        EndCalls();
        for (const char* const name : {"a", "b"})
            EXPECT_TRUE(ReadAll(folder + name) == kOld) << name << " after a fault at " << at;
        EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(folder), {}), 3) << at;
    }
}

}  // namespace
