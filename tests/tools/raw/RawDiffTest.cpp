#include "tools/vxfile/raw/RawDiff.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/report/Complaint.h"

using namespace vxfile;

namespace {

class RawDiff : public testing::Test {
 protected:
    /// Returns "where: left | right" for each difference, or the message of the failure.
    std::vector<std::string> Differing(const std::string& left, const std::string& right) {
        WriteAll(m_left, left);
        WriteAll(m_right, right);
        CDifferences differences;
        const std::string failure = FailureOf([&] { CompareRawData(m_left, m_right, differences); });
        std::vector<std::string> lines;
        for (const auto& one : differences.Kept())
            lines.push_back(one.where + ": " + one.left + " | " + one.right);
        if (!failure.empty()) lines.push_back(failure);
        m_omission = differences.Omission();
        return lines;
    }

    CTempFolder m_folder;
    std::string m_left = m_folder.Path("left.vxd");
    std::string m_right = m_folder.Path("right.vxd");
    std::string m_omission;
};

}  // namespace

TEST_F(RawDiff, FindsTheSampleThatDiffersWhereverItIsInALongSegment) {
    constexpr std::size_t kBlock = std::size_t{1} << 19;  // samples per comparison
    const std::vector<std::uint16_t> samples(3 * kBlock + 5, 0x1234);
    const std::string left = FileOf({{{11, 0, samples}}});
    for (const std::size_t at :
         {std::size_t{0}, std::size_t{1}, kBlock - 1, kBlock, kBlock + 1, 2 * kBlock, 3 * kBlock + 4}) {
        auto changed = samples;
        changed[at] = static_cast<std::uint16_t>(at % 2 == 0 ? 0x5634 : 0x1256);
        const auto lines = Differing(left, FileOf({{{11, 0, changed}}}));
        ASSERT_EQ(lines.size(), 1U);
        const std::string other = at % 2 == 0 ? "22068" : "4694";
        EXPECT_TRUE(lines[0].ends_with("> sample " + std::to_string(at) + ": 4660 | " + other)) << lines[0];
    }
}

TEST_F(RawDiff, ComparesWellTimesAndSizeOfEachSegment) {
    const CSegmentTexts one = {{11, 0, {1, 2}}, {12, 0, {3, 4}}};
    struct CCase {
        CSegmentTexts other;
        std::string line;
    };
    for (const auto& [other, line] : std::vector<CCase>{
             {one, ""},
             {{one[0], {13, 0, {3, 4}}},
              "well 12, from 0 to 100 ticks, 2 samples | well 13, from 0 to 100 ticks, 2 samples"},
             {{one[0], {12, 1, {3, 4}}},
              "well 12, from 0 to 100 ticks, 2 samples | well 12, from 1 to 101 ticks, 2 samples"},
             {{one[0], {12, 0, {3, 4}, 99}},
              "well 12, from 0 to 100 ticks, 2 samples | well 12, from 0 to 99 ticks, 2 samples"},
             {{one[0]}, "well 12, from 0 to 100 ticks, 2 samples | "},
         }) {
        const auto lines = Differing(FileOf({one}), FileOf({other}));
        if (line.empty()) {
            EXPECT_EQ(lines, std::vector<std::string>());
        } else {
            EXPECT_EQ(lines, std::vector<std::string>{"recording 1 (CompoundTest 1) > segment 2: " + line});
        }
    }
}

TEST_F(RawDiff, NamesFiveSegmentsOfARecordingAndContinuesWithTheNext) {
    const auto recording = [](int count, std::uint16_t sample) {
        CSegmentTexts segments;
        for (int i = 0; i < count; ++i)
            segments.push_back({11, i * 100, {sample}});
        return segments;
    };
    const auto lines =
        Differing(FileOf({recording(7, 1), recording(2, 1)}), FileOf({recording(7, 2), recording(2, 3)}));
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_TRUE(lines[3].starts_with("recording 1 (CompoundTest 1) > segment 4")) << lines[3];
    EXPECT_EQ(lines[3].find("maybe more"), std::string::npos);
    EXPECT_NE(lines[4].find("(and maybe more in this recording): 1 | 2"), std::string::npos) << lines[4];
    EXPECT_TRUE(lines[6].ends_with(": 1 | 3")) << lines[6];
}

TEST_F(RawDiff, ComparesWhatPositionsPointAtInsteadOfPositions) {
    const std::string file = FileOf({{{11, 0, {1}}}, {{12, 0, {2}}}});
    EXPECT_EQ(Differing(file, file), std::vector<std::string>());
    const auto lines = Differing(file, FileOf({{{11, 0, {1}}}, {{12, 0, {2}}}}, false));
    EXPECT_EQ(lines, std::vector<std::string>{"recording 2 > state: finished | not finished"});
}

TEST_F(RawDiff, RefusesOverlappingSegments) {
    CSegmentTexts segments(2000, {11, 0, {1}});
    std::string bytes = FileOf({segments});
    for (std::size_t at = bytes.find("Size=1"); at != std::string::npos; at = bytes.find("Size=1", at + 1))
        bytes = WithCell(bytes, "Size", "100000", at);
    const auto lines = Differing(bytes, bytes);
    EXPECT_EQ(lines, std::vector<std::string>{"Segments share bytes or chains; run 'vxfile verify' to see where."});
}

TEST_F(RawDiff, ReportsBytesThatNoPositionPointsAtUnlessTheyAreEqual) {
    const std::string file = FileOf({{{11, 0, {1}}}});
    EXPECT_EQ(Differing(file + "tail", file + "tail"), std::vector<std::string>());
    EXPECT_EQ(m_omission, "");
    EXPECT_EQ(Differing(file + "tail", file + "tall"), std::vector<std::string>());
    EXPECT_NE(m_omission.find("4 in " + m_left + ", 4 in " + m_right), std::string::npos) << m_omission;
}
