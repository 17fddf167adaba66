#include <gtest/gtest.h>

#include <vector>

#include "vxfileio/helpers/FileTime.h"
#include "vxfileio/helpers/Path.h"
#include "vxfileio/helpers/StdStr.h"
#include "vxfileio/helpers/StringParser.h"

using vxfileio::helpers::CPath;
using vxfileio::helpers::CStdStr;
using vxfileio::helpers::CStringParser;
using vxfileio::helpers::FileTimeToText;
using vxfileio::helpers::GetCurrentFileTime;

namespace {

constexpr const char* kCellSeparators = "=:\r\n";

std::string Text(const CStdStr& string) { return string.Text(); }

std::vector<std::string> Fields(const char* text, const char* separators = kCellSeparators) {
    const CStringParser parser(text, separators);
    std::vector<std::string> fields;
    for (int i = 0; i <= parser.GetCount(); ++i)
        fields.push_back(Text(parser.GetField(i, false)));
    return fields;
}

TEST(StringParserTest, RunsOfSeparatorsCountAsOneAndEndsYieldEmptyTokens) {
    using Expected = std::vector<std::string>;
    EXPECT_EQ(Fields("Key=12\r\n"), (Expected{"Key=12\r\n", "Key", "12", ""}));
    EXPECT_EQ(Fields("Key=\r\n"), (Expected{"Key=\r\n", "Key", ""}));
    EXPECT_EQ(Fields("a=:=b:c"), (Expected{"a=:=b:c", "a", "b", "c"}));
    EXPECT_EQ(Fields("=a"), (Expected{"=a", "", "a"}));
    EXPECT_EQ(Fields("="), (Expected{"=", "", ""}));
    EXPECT_EQ(Fields(":=:"), (Expected{":=:", "", ""}));
    EXPECT_EQ(Fields("whole"), (Expected{"whole", "whole"}));
    EXPECT_EQ(Fields(""), (Expected{""}));
    EXPECT_EQ(Fields("a=b", ""), (Expected{"a=b", "a=b"}));
}

TEST(StringParserTest, IndexOutOfRangeReturnsTheErrorText) {
    const CStringParser parser(" a = b ", "=");
    EXPECT_EQ(Text(parser.GetField(1, true)), "a");
    EXPECT_EQ(Text(parser.GetField(2, false)), " b ");
    for (const int index : {3, -1, 2147483647}) {
        EXPECT_EQ(Text(parser.GetField(index, false)), "ERROR: Array index out of range.");
    }
    EXPECT_EQ(Text(CStringParser("   ", "=").GetField(1, true)), "");
}

TEST(PathTest, SplitsByDriveLettersAndBackslashes) {
    const struct {
        const char *path, *folder, *title, *extension;
    } cases[] = {
        {"C:\\data\\run.xls", "C:\\data\\", "run", ".xls"},
        {"/home/me/run.1.xls", "\\home\\me\\", "run.1", ".xls"},
        {"\"C:/my data/run\"", "C:\\my data\\", "run", ""},
        {"C:\\data\\.xls", "C:\\data\\", "", ""},
        {"C:\\da.ta\\run", "C:\\da.ta\\", "run", ""},
        {"run.", "", "run", ""},
        {"C:run.xls", "C:", "run", ".xls"},
        {"C:", "C:", "", ""},
        {"a", "", "a", ""},
        {"\"", "", "\"", ""},
        {"\"\"", "", "", ""},
        {"", "", "", ""},
    };
    for (const auto& c : cases) {
        const CPath path(c.path, false, false);
        EXPECT_EQ(Text(path.GetDriveDirectory()), c.folder) << c.path;
        EXPECT_EQ(Text(path.GetTitle()), c.title) << c.path;
        EXPECT_EQ(Text(path.GetExtension()), c.extension) << c.path;
    }
    const std::string folder(1000, 'x');
    EXPECT_EQ(Text(CPath((folder + "/" + folder + "." + folder).c_str()).GetTitle()), folder);
}

TEST(StdStrTest, OperationsDoWhatTheirNamesSay) {
    CStdStr string("abcabc");
    string.Replace('a', 'x');
    string.Remove('b');
    string += 'y';
    string += "z";
    EXPECT_STREQ(string, "xcxcyz");
    EXPECT_EQ(Text(string.Mid(4)), "yz");
    EXPECT_EQ(Text(string.Mid(1, 2)), "cx");
    EXPECT_EQ(Text(string.Mid(99)), "");
    string.GetBuffer()[0] = 'A';
    const CStdStr copy = string;
    string = 'q';
    EXPECT_EQ(Text(string), "q");
    EXPECT_EQ(Text(copy), "Acxcyz");
    string.Empty();
    EXPECT_EQ(Text(string), "");
    EXPECT_EQ(Text(CStdStr(static_cast<const char*>(nullptr))), "");
}

TEST(FileTimeTest, CountsFrom1601InUnitsOf100Nanoseconds) {
    constexpr std::uint64_t kSecond = 10'000'000;
    EXPECT_EQ(FileTimeToText(0), "1601-01-01 00:00:00");
    EXPECT_EQ(FileTimeToText(kSecond * 86400 * 365 - 1), "1601-12-31 23:59:59");
    EXPECT_EQ(FileTimeToText(116444736000000000U), "1970-01-01 00:00:00");
    EXPECT_EQ(FileTimeToText(133512191999999999U), "2024-01-31 23:59:59");
    EXPECT_EQ(FileTimeToText(133536384000000000U), "2024-02-29 00:00:00");
    EXPECT_EQ(FileTimeToText(9223372036854775807U), "30828-09-14 02:48:05");
    EXPECT_EQ(FileTimeToText(18446744073709551615U), "30828-09-14 02:48:05");
    const std::uint64_t now = GetCurrentFileTime();
    EXPECT_GT(now, 133536384000000000U);  // later than the day above
    EXPECT_LT(now, 133536384000000000U + kSecond * 86400 * 365 * 200);
}

}  // namespace
