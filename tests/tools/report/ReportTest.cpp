#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Differences.h"
#include "verify/Failure.h"
#include "verify/Findings.h"
#include "vxfileio/base/ExcVXReader.h"

using namespace vxfile;

namespace {

std::string Differing(const std::vector<CLeaf>& left, const std::vector<CLeaf>& right) {
    CDifferences differences;
    CompareLeaves(left, right, differences);
    std::string text;
    for (const auto& difference : differences.Kept())
        text += difference.where + ":" + difference.left + "|" + difference.right + " ";
    return text;
}

}  // namespace

TEST(Differences, OfLeavesAtOnePlaceAreThoseInTheirOrder) {
    const std::vector<CLeaf> several = {{"A", "1"}, {"B", "2"}, {"A", "3"}};
    EXPECT_EQ(Differing(several, several), "");
    EXPECT_EQ(Differing(several, {{"A", "1"}, {"A", "4"}, {"A", "5"}}), "B:2| A:3|4 A:|5 ");
    EXPECT_EQ(Differing({{"A", "1"}}, several), "B:|2 A:|3 ");
    EXPECT_EQ(Differing(several, {{"B", "2"}}), "A:1| A:3| ");
}

TEST(Findings, AreAllCountedAndTheFirstThousandKept) {
    CFindings findings;
    CDifferences differences;
    for (int i = 0; i < 1002; ++i) {
        findings.Add({.where = std::to_string(i), .found = {}, .expected = {}, .meaning = {}});
        differences.Add({std::to_string(i), "", ""});
    }
    EXPECT_EQ(findings.Count(), 1002U);
    ASSERT_EQ(findings.Kept().size(), 1000U);
    EXPECT_EQ(findings.Kept().back().where, "999");
    CFindings all;
    all.Add(findings);
    EXPECT_EQ(all.Count(), 1002U);
    EXPECT_EQ(differences.Count(), 1002U);
    ASSERT_EQ(differences.Kept().size(), 1000U);
    EXPECT_EQ(differences.Kept().back().where, "999");
}

TEST(Complaint, IsTheMessageOfAnyFailure) {
    EXPECT_EQ(FailureOf([] {}), "");
    EXPECT_EQ(FailureOf([] { throw CFailure("Own."); }), "Own.");
    EXPECT_EQ(FailureOf([] { throw CExcVXReader(-1, "Library."); }), "Library.");
    EXPECT_EQ(FailureOf([] { throw std::runtime_error("Other."); }), "Other.");
    EXPECT_NE(FailureOf([] { throw std::bad_alloc(); }), "");
}
