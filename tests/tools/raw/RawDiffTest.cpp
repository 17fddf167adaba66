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
        return lines;
    }

    CTempFolder m_folder;
    std::string m_left = m_folder.Path("left.vxd");
    std::string m_right = m_folder.Path("right.vxd");
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

TEST_F(RawDiff, RefusesOverlappingSegments) {
    CSegmentTexts segments(2000, {11, 0, {1}});
    std::string bytes = FileOf({segments});
    const std::string larger = "Size=100000";
    for (std::size_t at = 0; (at = bytes.find("Size=1", at)) != std::string::npos; at += larger.size())
        bytes.replace(at, larger.size(), larger);
    const auto lines = Differing(bytes, bytes);
    EXPECT_EQ(lines, std::vector<std::string>{"Segments share bytes or chains; run 'vxfile verify' to see where."});
}
