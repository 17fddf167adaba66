#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/tools/ToolRun.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Differences.h"
#include "tools/vxfile/report/Page.h"
#include "verify/Failure.h"
#include "verify/Findings.h"
#include "vxfileio/base/ExcVXReader.h"

using namespace vxfile;

namespace {

std::string Printed(const CPage& page) {
    return Captured([&] {
               page.Print();
               return 0;
           })
        .out;
}

CPage WithRows(int rows) {
    std::vector<CPage::CRow> table = {{"No", "State"}};
    for (int i = 1; i <= rows; ++i)
        table.push_back({std::to_string(i), "finished"});
    CPage page;
    page.SetTable(table);
    return page;
}

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
    EXPECT_EQ(differences.Count(), 1002U);
    ASSERT_EQ(differences.Kept().size(), 1000U);
    EXPECT_EQ(differences.Kept().back().where, "999");
}

TEST(Differences, KeepTheFirstOmission) {
    CDifferences differences;
    EXPECT_EQ(differences.Omission(), "");
    differences.Omit("first");
    differences.Omit("second");
    EXPECT_EQ(differences.Omission(), "first");
}

TEST(Page, ShowsLinesInOneColumnAndLeavesOutEmptyTexts) {
    CPage page;
    page.Add("A", "a", "1");
    page.AddText("Longer", "longer", "x\n");
    page.AddText("None", "none", "");
    EXPECT_EQ(Printed(page), "  A       1\n  Longer  x\\n\n");
    EXPECT_EQ(page.Json().dump(), R"({"a":"1","longer":"x\\n","none":""})");
}

TEST(Page, CutsTextsAt160Characters) {
    CPage page;
    page.Add("A", "a", std::string(160, 'x'));
    page.Add("B", "b", std::string(161, 'y'));
    EXPECT_EQ(Printed(page), "  A  " + std::string(160, 'x') + "\n  B  " + std::string(160, 'y') + "...\n");
    EXPECT_EQ(page.Json()["b"], std::string(161, 'y'));
}

TEST(Page, ShowsSixteenRowsOrFourteenAndTheLast) {
    EXPECT_EQ(Printed(WithRows(0)), "");
    const std::string all = Printed(WithRows(16));
    EXPECT_NE(all.find("  1   finished\n"), std::string::npos) << all;
    EXPECT_NE(all.find("  15  finished\n  16  finished\n"), std::string::npos) << all;
    EXPECT_EQ(all.find("more"), std::string::npos) << all;
    const std::string some = Printed(WithRows(17));
    EXPECT_NE(some.find("  14  finished\n  2 more; --json lists them\n  17  finished\n"), std::string::npos) << some;
}

TEST(Page, SaysDamageToPeopleAndPrograms) {
    CPage page;
    page.SetDamage("");
    EXPECT_FALSE(page.IsDamaged() || page.Json().contains("damage"));
    page.SetRemark("Remark.");
    page.SetDamage("Cut.");
    EXPECT_EQ(Printed(page), "\n  Cut.\n\n  Remark.\n");
    EXPECT_EQ(page.Json()["damage"], "Cut.");
}

TEST(Complaint, IsTheMessageOfAnyFailure) {
    EXPECT_EQ(FailureOf([] {}), "");
    EXPECT_EQ(FailureOf([] { throw CFailure("Own."); }), "Own.");
    EXPECT_EQ(FailureOf([] { throw CExcVXReader(-1, "Library."); }), "Library.");
    EXPECT_EQ(FailureOf([] { throw std::runtime_error("Other."); }), "Other.");
    EXPECT_NE(FailureOf([] { throw std::bad_alloc(); }), "");
}

TEST(Complaint, KeepsControlCharactersFromTheTerminal) {
    const CToolRun run = Captured([] {
        Complain("bell\a.vxd");
        return 0;
    });
    EXPECT_EQ(run.err, "vxfile: bell\\x07.vxd\n");
    EXPECT_EQ(run.out, "");
}
