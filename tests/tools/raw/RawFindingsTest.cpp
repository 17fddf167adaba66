#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "verify/raw/Coverage.h"
#include "verify/raw/RawVerify.h"

using namespace vxfile;

namespace {

constexpr std::size_t kFirst = 1190;  ///< The offset of the first recording header.

class RawFindings : public testing::Test {
 protected:
    CFindings Verified(const std::string& bytes) {
        WriteAll(m_path, bytes);
        return VerifyRawData(m_path);
    }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("run.vxd");
};

}  // namespace

// No position points to it yet.
TEST_F(RawFindings, IgnoreAHeaderThatAWriterHasBegun) {
    const std::string file = FileOf({{{11, 0, {1, 2}}, {12, 0, {3}}, {11, 200, {4}}}}, false);
    const std::string next = FileOf({{{12, 500, {7}}}}, false).substr(kFirst);
    for (const std::size_t size : {0U, 1U, 49U, 2459U, 2460U, 2461U})
        EXPECT_EQ(Verified(file + next.substr(0, size)).Count(), size <= 2460 ? 1U : 2U) << size;
}

TEST_F(RawFindings, ReachEveryByteOnce) {
    CCoverage coverage;
    std::vector<std::int64_t> seen;
    for (const CRange range :
         {CRange{0, 10}, CRange{10, 20}, CRange{40, 50}, CRange{42, 45}, CRange{15, 30}, CRange{60, 60}})
        coverage.Add(range);
    coverage.Inspect(
        100,
        [&](CRange gap) {
            seen.insert(seen.end(), {gap.begin, gap.end});
        },
        [&](CRange overlap) {
            seen.insert(seen.end(), {-overlap.begin, -overlap.end});
        });
    EXPECT_EQ(seen, (std::vector<std::int64_t>{-15, -20, 30, 40, -42, -45, 50, 100}));
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
