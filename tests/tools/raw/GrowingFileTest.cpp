#include "tools/vxfile/raw/GrowingFile.h"

#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/rawdata/ExampleHdrs.h"
#include "tests/rawdata/RawFileBytes.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/raw/RawInfo.h"
#include "tools/vxfile/raw/SampleSource.h"
#include "tools/vxfile/report/Complaint.h"
#include "verify/raw/RawScan.h"
#include "verify/raw/RawVerify.h"

using namespace vxfile;

namespace {

using EState = CGrowingFile::EState;

class GrowingFile : public testing::Test {
 protected:
    /// Rewrites the file with this content and looks at it once.
    EState LookAt(CGrowingFile& file, const std::string& bytes) {
        WriteAll(m_path, bytes);
        return file.State(file.Look());
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
};

const std::string kRunning = FileOf({{{11, 0, {1, 2}}}, {{12, 0, {3, 4, 5}}}}, false);
const std::string kFinished = FileOf({{{11, 0, {1, 2}}}, {{12, 0, {3, 4, 5}}}});

/// Returns the findings other than that the file is still being written.
std::vector<std::string> DamageIn(const CFindings& findings) {
    std::vector<std::string> damage;
    for (const auto& finding : findings.Kept()) {
        const bool isUnfinished = finding.meaning.starts_with("The recording is unfinished, with ");
        const bool isEmpty = finding.meaning.starts_with("The file holds no recording");
        if (!isUnfinished && !isEmpty) damage.push_back(finding.where + ": " + finding.found + ", " + finding.meaning);
    }
    return damage;
}

/// Returns why the samples of a file that is being written can't be read or are in doubt, except if it has no finished
/// recording yet.
std::string DamageOfSamples(const std::string& path) {
    std::string doubts;
    const std::string failure = FailureOf([&] {
        CSampleSource source(path, {});
        source.ForEach([](const CPiece& /*piece*/) {});
        for (const auto& doubt : source.Doubts())
            doubts += doubt;
    });
    const bool isTooEarly = failure.find("is unfinished") != std::string::npos;
    return doubts + (isTooEarly ? "" : failure);
}

}  // namespace

TEST_F(GrowingFile, FollowsARecordingByteByByteToItsEnd) {
    constexpr std::size_t kSecondHdrEnd = 3954 + 2460;
    const std::string first = WithCell(WithCell(kRunning, "FPosRecordingData", "-1"), "FPosNextRecordingHdr", "-1");
    WriteAll(m_path, "");
    CGrowingFile file(m_path);
    std::ofstream growing(m_path, std::ios::binary | std::ios::app);
    for (std::size_t size = 1; size <= kSecondHdrEnd; ++size) {
        growing << first[size - 1] << std::flush;
        ASSERT_EQ(file.State(file.Look()), EState::Running) << size;
    }
    EXPECT_EQ(LookAt(file, kRunning.substr(0, kSecondHdrEnd)), EState::Running);
    for (std::size_t size = kSecondHdrEnd + 1; size <= kRunning.size(); ++size) {
        growing << kRunning[size - 1] << std::flush;
        ASSERT_EQ(file.State(file.Look()), EState::Running) << size;
    }
    EXPECT_EQ(file.Recordings(), 2U);
    EXPECT_EQ(file.Position(), static_cast<std::int64_t>(kRunning.size()));
    EXPECT_EQ(file.Latest()->index, 1U);
    EXPECT_EQ(file.Latest()->segments, 1U);
    EXPECT_EQ(file.Latest()->samples, 3U);
    EXPECT_EQ(file.Latest()->wells, std::set<std::int32_t>{12});
    EXPECT_EQ(LookAt(file, kFinished), EState::Finished);
    EXPECT_EQ(file.Replacements(), 0U);
}

TEST_F(GrowingFile, HasNewsOnlyWhenSomethingIsComplete) {
    WriteAll(m_path, kRunning.substr(0, 3949));
    CGrowingFile file(m_path);
    EXPECT_TRUE(file.Look());
    EXPECT_FALSE(file.Look());
    WriteAll(m_path, kRunning.substr(0, 3953));
    EXPECT_FALSE(file.Look());
    WriteAll(m_path, kRunning.substr(0, 3954));
    EXPECT_TRUE(file.Look());
    EXPECT_EQ(file.Latest()->segments, 1U);
}

TEST_F(GrowingFile, IsFollowedFromTheBeginningIfItIsReplaced) {
    const std::string larger = FileOf({{{11, 0, {9, 9, 9}}, {12, 0, {8}}}, {{12, 0, {3, 4, 5}}, {12, 300, {1}}}});
    for (const std::string& other : {larger, FileOf({{{11, 0, {1}}}}), SmallFileBytes()}) {
        WriteAll(m_path, kRunning);
        CGrowingFile file(m_path);
        EXPECT_EQ(file.State(file.Look()), EState::Running);
        EXPECT_EQ(LookAt(file, other), EState::Finished);
        EXPECT_EQ(file.Position(), static_cast<std::int64_t>(other.size()));
    }
}

TEST_F(GrowingFile, IsNotDamagedIfItIsRewrittenAndRunsAgainBetweenLookAndState) {
    WriteAll(m_path, FileOf({{{11, 0, {1, 2}}}}) + "x");
    CGrowingFile file(m_path);
    EXPECT_EQ(file.State(file.Look()), EState::Running);
    EXPECT_FALSE(file.Look());
    std::ofstream(m_path, std::ios::binary) << kRunning;  // the same file, which stays open
    EXPECT_EQ(file.State(false), EState::Running);
}

TEST_F(GrowingFile, IsAwaitedBeforeItExistsAndAfterItIsDeleted) {
    CGrowingFile file(m_path);
    EXPECT_FALSE(file.IsThere());
    EXPECT_EQ(file.State(file.Look()), EState::Running);
    EXPECT_EQ(LookAt(file, kRunning), EState::Running);
    EXPECT_EQ(file.Recordings(), 2U);
    std::filesystem::remove(m_path);
    for (int look = 0; look < 3; ++look)
        EXPECT_EQ(file.State(file.Look()), EState::Running);
    EXPECT_FALSE(file.IsThere());
    EXPECT_EQ(LookAt(file, kFinished), EState::Finished);
}

TEST_F(GrowingFile, EndsForAScanWhereItEndedWhenItWasOpened) {
    WriteAll(m_path, kRunning.substr(0, kRunning.size() - 306));
    const CRawScan scan(m_path);
    EXPECT_FALSE(scan.IsGrowing());
    const std::string more = FileOf({{{11, 0, {1, 2}}}, {{12, 0, {3, 4, 5}}, {11, 0, {1}}}}, false);
    WriteAll(m_path, more);
    EXPECT_TRUE(scan.IsGrowing());
    EXPECT_TRUE(scan.HasByteAt(static_cast<std::int64_t>(more.size()) - 1));
    EXPECT_FALSE(scan.HasByteAt(static_cast<std::int64_t>(more.size())));
    CSegmentWalk walk(scan, scan.Size(), 0);
    EXPECT_EQ(walk.Next(), nullptr);
    EXPECT_FALSE(walk.Break());
    CSegmentWalk beyond(scan, static_cast<std::int64_t>(more.size()), 0);
    EXPECT_EQ(beyond.Next(), nullptr);
    EXPECT_TRUE(beyond.Break());
}

TEST_F(GrowingFile, IsNeverReportedAsDamagedByVerifyInfoAndSamples) {
    std::atomic<bool> isDone = false;
    std::thread writing([&] {
        CIRawDataWriter writer;
        const std::vector<std::uint16_t> samples(1000, 7);
        writer.Open(m_path);
        writer.WriteFileHdr(ExampleFileHdr());
        for (std::int32_t recording = 1; !isDone; ++recording) {
            writer.WriteRecordingHdr(ExampleRecordingHdr("CompoundTest", recording));
            for (std::int64_t time = 0; time < 5000000 && !isDone; time += 100000) {
                writer.WriteData(11, time, time + 99900, 100, samples.data());
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        }
        writer.Close();
    });
    while (!std::filesystem::exists(m_path) || std::filesystem::file_size(m_path) < 10000)
        std::this_thread::yield();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(300);
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        EXPECT_EQ(DamageIn(VerifyRawData(m_path)), std::vector<std::string>());
        EXPECT_FALSE(InfoOfRawData(m_path, true).IsDamaged());
        EXPECT_EQ(DamageOfSamples(m_path), "");
    }
    isDone = true;
    writing.join();
    EXPECT_EQ(VerifyRawData(m_path).Count(), 0U);
}
