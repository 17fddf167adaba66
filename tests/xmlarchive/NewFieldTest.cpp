#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/TempFolder.h"
#include "verify/document/XmlVerify.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::xmlarchive {

/// A class as an earlier release had it.
struct COldSet {
    std::int32_t Count = 0;
    std::string Comment;
};

/// The same class with fields that were added later: first, in the middle and last.
struct CNewSet : COldSet {
    double Drift = 0.25;
    bool IsOn = true;
    std::vector<std::int32_t> Marks = {7};
};

template <>
struct CXmlForm<COldSet> {
    static constexpr std::string_view kElement = "Set";
    static constexpr auto kFields =
        std::tuple{CValueField{"Count", &COldSet::Count}, CTextField{"Comment", &COldSet::Comment}};
};

template <>
struct CXmlForm<CNewSet> {
    static constexpr std::string_view kElement = "Set";
    static constexpr auto kFields = std::tuple{
        CNewField{CValueField{"Drift", &CNewSet::Drift}},
        CValueField<CNewSet, std::int32_t>{"Count", &CNewSet::Count},
        CNewField{CValueField{"IsOn", &CNewSet::IsOn}},
        CTextField<CNewSet>{"Comment", &CNewSet::Comment},
        CNewField{CValuesField{"Marks", "Mark", &CNewSet::Marks}},
    };
};

namespace {

constexpr CXmlElement kNewRoot[] = {kElementOf<CXmlForm<CNewSet>>};

template <class Set>
void Write(const std::string& path, const Set& set) {
    std::string error;
    WriteDocument(path, "", error, [&](CXmlFileArchive& archive) { SaveElement(archive, set); });
    ASSERT_EQ(error, "");
}

CNewSet Read(const std::string& path) {
    CNewSet set;
    std::string error;
    ReadDocument(path, "", "Set", error, [&](CXmlFileArchive& archive) { LoadElement(archive, set); });
    EXPECT_EQ(error, "");
    return set;
}

std::string FindingsOf(const std::string& path) {
    const vxfile::CFindings findings = vxfile::VerifyDocument(path, kNewRoot);
    std::string found;
    for (const vxfile::CFinding& finding : findings.Kept())
        found += finding.where + ": " + finding.found + '\n';
    return found;
}

TEST(NewFieldTest, IsWrittenReadAndCheckedAndNotMissedInOlderFiles) {
    const CTempFolder folder;
    const std::string path = folder.Path("set.xml");
    CNewSet written;
    written.Count = 3;
    written.Drift = 0.5;
    written.IsOn = false;
    written.Marks = {1, 2};
    Write(path, written);
    EXPECT_EQ(FindingsOf(path), "");
    const CNewSet read = Read(path);
    EXPECT_EQ(std::tie(read.Count, read.Drift, read.IsOn, read.Marks),
              std::tie(written.Count, written.Drift, written.IsOn, written.Marks));

    Write(path, COldSet{4, "older"});
    EXPECT_EQ(FindingsOf(path), "");
    const CNewSet older = Read(path);
    EXPECT_EQ(std::tie(older.Count, older.Comment, older.Drift, older.IsOn, older.Marks),
              std::make_tuple(4, std::string("older"), 0.25, true, std::vector<std::int32_t>{7}));

    WriteAll(path, std::regex_replace(ReadAll(path), std::regex("<Comment>older</Comment>"), ""));
    EXPECT_EQ(FindingsOf(path), "Vexaprobe/Set: no <Comment> up to here\n");
    Write(path, written);
    WriteAll(path, std::regex_replace(ReadAll(path), std::regex("(<Drift>.*)(<Count>.*</Count>)"), "$2$1"));
    EXPECT_EQ(FindingsOf(path), "Vexaprobe/Set: \"<Drift>\"\n");
}

}  // namespace

}  // namespace vxfileio::xmlarchive
