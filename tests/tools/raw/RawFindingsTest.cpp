#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/raw/RawInfo.h"
#include "tools/vxfile/system/ExitStatus.h"
#include "verify/raw/Coverage.h"
#include "verify/raw/RawVerify.h"

using namespace vxfile;

namespace {

/// Headers begin at 0, 1190, 3650, 3954, 4262 and 6722.
const std::string kTwo = FileOf({{{11, 0, {1, 2}}, {12, 0, {3, 4, 5, 6}}}, {{12, 500, {7}}}});
constexpr std::size_t kFirst = 1190;
constexpr std::size_t kSegment11 = 3650;
constexpr std::size_t kSegment12 = 3954;
constexpr std::size_t kSecond = 4262;
constexpr std::size_t kLast = 6722;

class RawFindings : public testing::Test {
 protected:
    CFindings Verified(const std::string& bytes) {
        WriteAll(m_path, bytes);
        return VerifyRawData(m_path);
    }

    CPage Told(const std::string& bytes) {
        WriteAll(m_path, bytes);
        return InfoOfRawData(m_path, true);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
};

}  // namespace

TEST_F(RawFindings, NameCellAndOffsetOfTheFault) {
    EXPECT_EQ(Verified(kTwo).Count(), 0U);
    struct CCase {
        const char* key;
        const char* value;
        std::size_t header;
        const char* where;
        std::int64_t offset;
        const char* found;
        int status;
    };
    for (const auto& c : std::vector<CCase>{
             {"FPosFirstRecordingHdr", "4262", 0, "file header > FPosFirstRecordingHdr", 50, "4262", 1},
             {"FPosRecordingData", "3954", kFirst, "recording 1 (CompoundTest 1) > FPosRecordingData", 1340, "3954", 1},
             {"FPosRecordingTrailer", "5", kFirst, "recording 1 (CompoundTest 1) > FPosRecordingTrailer", 1390, "5", 1},
             {"FPosNextRecordingHdr", "-1", kFirst, "file", 4262, "2762 bytes up to 7024 that no position leads to", 1},
             {"FPosNextRecordingHdr", "1190", kFirst, "recording 1 (CompoundTest 1) > FPosNextRecordingHdr", 1440,
              "1190, which the chain has visited before", 2},
             {"FPosNextRecordingHdr", "7024", kSecond, "recording 2 (CompoundTest 2) > FPosNextRecordingHdr", 4512,
              "7024", 2},
             {"Ticks", "0:100", kFirst, "recording 1 (CompoundTest 1) > Ticks", 1820, "0 for well 11", 1},
             {"WellIDs", "12:12", kSecond, "recording 2 (CompoundTest 2) > WellIDs", 4692, "a list with well 12 twice",
              1},
             {"ID", "13", kSegment12, "recording 1 (CompoundTest 1) > segment 2 (well 13) > ID", 4004, "13", 1},
             {"TimeTo", "-1", kSegment11, "recording 1 (CompoundTest 1) > segment 1 (well 11) > TimeTo", 3850, "-1", 1},
             {"TimeTo", "99", kSegment11, "recording 1 (CompoundTest 1) > segment 1 (well 11) > Size", 3900, "2", 1},
             {"TimeTo", "600", kLast, "recording 2 (CompoundTest 2) > segment 1 (well 12) > Size", 6972, "1", 1},
             {"FPosNextSegmentHdr", "7024", kSegment11, "recording 1 (CompoundTest 1) > FPosNextSegmentHdr", 3750,
              "7024", 1},
         }) {
        const CFindings findings = Verified(WithCell(kTwo, c.key, c.value, c.header));
        bool isFound = false;
        std::string all;
        for (const auto& finding : findings.Kept()) {
            all += finding.where + " (" + std::to_string(finding.offset) + "): " + finding.found + '\n';
            isFound = isFound || (finding.where == c.where && finding.offset == c.offset && finding.found == c.found);
        }
        EXPECT_TRUE(isFound) << c.key << '=' << c.value << " is reported as\n" << all;
        EXPECT_EQ(StatusOf(findings), c.status) << c.key << '=' << c.value;
    }
}

TEST_F(RawFindings, CountTheContentsOfAnUnfinishedRecording) {
    const CFindings findings = Verified(FileOf({{{11, 0, {1, 2}}, {12, 0, {3}}, {11, 200, {4}}}}, false));
    ASSERT_EQ(findings.Count(), 1U);
    EXPECT_EQ(findings.Kept()[0].offset, 1340);
    EXPECT_TRUE(findings.Kept()[0].meaning.starts_with(
        "The recording is unfinished, with 3 segments of 2 wells (4 samples) so far: "))
        << findings.Kept()[0].meaning;
}

TEST_F(RawFindings, ReachEveryByteOnce) {
    CCoverage coverage;
    std::vector<std::int64_t> seen;
    for (const CRange range : {CRange{0, 10}, CRange{10, 20}, CRange{40, 50}, CRange{15, 30}, CRange{60, 60}})
        coverage.Add(range);
    coverage.Inspect(
        100,
        [&](CRange gap) {
            seen.insert(seen.end(), {gap.begin, gap.end});
        },
        [&](CRange overlap) {
            seen.insert(seen.end(), {-overlap.begin, -overlap.end});
        });
    EXPECT_EQ(seen, (std::vector<std::int64_t>{-15, -20, 30, 40, 50, 100}));
}

TEST_F(RawFindings, AreOneForEachCutOfTheLastSegment) {
    for (std::size_t size = kLast + 1; size < kTwo.size(); ++size)
        ASSERT_EQ(StatusOf(Verified(kTwo.substr(0, size))), 1) << size;
}

TEST_F(RawFindings, OfInfoIncludeACutAtAnyOffset) {
    EXPECT_FALSE(Told(kTwo).IsDamaged());
    for (const std::size_t size : {kTwo.size() - 1, kTwo.size() - 2, kLast + 1, kSecond + 2000, kSecond, kSecond - 1,
                                   kSegment12, kFirst + 1, kFirst, kFirst - 1, std::size_t{40}})
        EXPECT_TRUE(Told(kTwo.substr(0, size)).IsDamaged()) << size;
    const CJson json = Told(kTwo.substr(0, kTwo.size() - 1)).Json();
    EXPECT_EQ(json["recordings"][1]["samples"], 0);
    EXPECT_EQ(json["recordings"][1]["segmentsDamaged"], true);
}

TEST_F(RawFindings, OfInfoDoNotIncludeAnUnfinishedRecording) {
    CPage page = Told(FileOf({{{11, 0, {1, 2}}, {12, 0, {3}}}}, false));
    EXPECT_FALSE(page.IsDamaged());
    EXPECT_EQ(page.Json()["lastFinished"], false);
    EXPECT_EQ(page.Json()["recordings"][0]["samples"], 3);
}

// The samples of segment 11 begin at 3950; the second page of the file begins among them.
TEST_F(RawFindings, PagesOfZerosAmongSamplesAreReported) {
    const std::string file = FileOf({{{11, 0, std::vector<std::uint16_t>(5000, 7)}, {12, 0, {1, 2}}}});
    EXPECT_EQ(Verified(file).Count(), 0U);
    std::string lost = file;
    lost.replace(8192, 4096, 4096, '\0');
    const CFindings findings = Verified(lost);
    ASSERT_EQ(findings.Count(), 1U);
    EXPECT_EQ(findings.Kept().front().where, "recording 1 (CompoundTest 1) > segment 1 (well 11) > samples");
    EXPECT_EQ(findings.Kept().front().offset, 8192);
    EXPECT_EQ(findings.Kept().front().found, "4096 bytes that are 0");
    lost.replace(8190, 2, 2, '\0');
    EXPECT_EQ(Verified(lost).Count(), 0U) << "the signal was at 0 before";
}

// The header of segment 12 ends two bytes after the page begins, or its `Size` is also on the page.
TEST_F(RawFindings, APageOfZerosThatBeginsInAHeaderIsReported) {
    for (const std::size_t end : {std::size_t{8194}, std::size_t{8252}}) {
        const std::vector<std::uint16_t> before((end - 4250) / 2, 7);
        std::string file = FileOf({{{11, 0, before}, {12, 0, std::vector<std::uint16_t>(3000, 7)}}});
        EXPECT_EQ(Verified(file).Count(), 0U);
        file.replace(8192, 4096, 4096, '\0');
        const CFindings findings = Verified(file);
        EXPECT_TRUE(std::ranges::any_of(findings.Kept(), [](const auto& finding) {
            return finding.where.ends_with(" > samples") && finding.offset == 8192;
        })) << end;
    }
}
