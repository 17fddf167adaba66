#include "tools/vxfile/report/Text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vxfileio/helpers/PrintableText.h"

using namespace vxfile;

namespace {

template <class Input>
using CCases = std::vector<std::pair<Input, std::string>>;

}  // namespace

TEST(Text, QuotesUnprintableBytesAndCutsAtSixtyBytes) {
    const std::string sixty(60, 'x');
    for (const auto& [bytes, quoted] : CCases<std::string>{{"", R"("")"},
                                                           {"plain", R"("plain")"},
                                                           {"a\"b\\c", R"("a\"b\\c")"},
                                                           {"\r\n", R"("\r\n")"},
                                                           {std::string("\0\x1F\x7F\xFF", 4), R"("\x00\x1f\x7f\xff")"},
                                                           {sixty, '"' + sixty + '"'},
                                                           {sixty + 'y', '"' + sixty + "\"..."}})
        EXPECT_EQ(Quoted(bytes), quoted);
}

TEST(Text, ReadsBytesAsUtf8OrElseAsLatin1) {
    for (const auto& [bytes, text] : CCases<std::string>{{"tick\ttock", R"(tick\x09tock)"},
                                                         {"a\"b\\c", R"(a"b\c)"},
                                                         {"\xC3\xBC", "\xC3\xBC"},
                                                         {"\xFC", "\xC3\xBC"},
                                                         {"\xC3\xBC\xFC", "\xC3\x83\xC2\xBC\xC3\xBC"},
                                                         {"\xE2\x82\xAC", "\xE2\x82\xAC"},
                                                         {"\xE2\x82", R"(â\x82)"},
                                                         {"\xE0\x9F\xBF", R"(à\x9f¿)"},
                                                         {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\\x80"},
                                                         {"\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
                                                         {"\xF4\x90\x80\x80", R"(ô\x90\x80\x80)"},
                                                         {"\xC2\x9B", R"(Â\x9b)"}})
        EXPECT_EQ(Readable(bytes), text);
    EXPECT_EQ(vxfileio::helpers::Utf8("\x7F\x80\xFF"), "\x7F\xC2\x80\xC3\xBF");
}

TEST(Text, CountsAndCutsCharactersNotBytes) {
    EXPECT_EQ(Width("über"), 4U);
    EXPECT_EQ(Cut("über", 1), "ü");
    EXPECT_EQ(Cut("über", 3), "übe");
    EXPECT_EQ(Cut("over", 4), "over");
    EXPECT_EQ(Cut("over", 0), "");
}

TEST(Text, LowersOnlyAscii) { EXPECT_EQ(Lowered("AZaz@[\xC3\x9C"), "azaz@[\xC3\x9C"); }

TEST(Text, CountsInSingularAndPlural) {
    for (const auto& [count, text] : CCases<std::uint64_t>{{0, "0 bytes"}, {1, "1 byte"}, {2, "2 bytes"}})
        EXPECT_EQ(Counted(count, "byte"), text);
}

TEST(Text, FormatsSizesInTheLargestUnitBelowThem) {
    for (const auto& [size, text] : CCases<std::int64_t>{{0, "0 bytes"},
                                                         {1023, "1023 bytes"},
                                                         {1024, "1.0 KiB"},
                                                         {4266, "4.2 KiB"},
                                                         {1 << 20, "1.0 MiB"},
                                                         {std::int64_t{5} << 30, "5.0 GiB"},
                                                         {std::int64_t{1} << 40, "1.0 TiB"},
                                                         {std::int64_t{2048} << 40, "2048.0 TiB"}})
        EXPECT_EQ(SizeText(size), text);
}

TEST(Text, FormatsDosesInTheLargestUnitWithoutDecimals) {
    for (const auto& [dose, text] : CCases<std::uint64_t>{{0, "0 pM"},
                                                          {999, "999 pM"},
                                                          {1000, "1 nM"},
                                                          {1001, "1001 pM"},
                                                          {2500000, "2500 nM"},
                                                          {3000000, "3 \xC2\xB5M"},
                                                          {4000000000, "4 mM"},
                                                          {5000000000000, "5 M"},
                                                          {6000000000000000, "6000 M"}})
        EXPECT_EQ(DoseWithUnit(dose), text);
}

TEST(Text, ReadsDosesOnlyWithAUnitAndWhole) {
    for (const auto& [text, dose] : std::vector<std::pair<std::string, std::optional<std::int64_t>>>{
             {"100nM", 100'000},
             {"1 uM", 1'000'000},
             {"1\xC2\xB5M", 1'000'000},
             {"1\xCE\xBCM", 1'000'000},
             {"1\xB5M", 1'000'000},
             {"0.5nM", 500},
             {"2.50mM", 2'500'000'000},
             {"9M", 9'000'000'000'000},
             {"7pM", 7},
             {"0", 0},
             {"0nM", 0},
             {"9223372036854775807pM", std::numeric_limits<std::int64_t>::max()},
             {"9223372036854775808pM", std::nullopt},
             {"0.5pM", std::nullopt},
             {"0.0005nM", std::nullopt},
             {"0.0050nM", 5},
             {"1", std::nullopt},
             {"nM", std::nullopt},
             {".5nM", std::nullopt},
             {"1.2.3nM", std::nullopt},
             {"-1nM", std::nullopt},
             {"1NM", std::nullopt},
             {"1nM ", std::nullopt},
             {"", std::nullopt}})
        EXPECT_EQ(ParseDose(text), dose) << text;
}

TEST(Text, ShortensRunsOfThreeNumbersAndMore) {
    constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
    for (const auto& [numbers, text] :
         CCases<std::vector<std::int32_t>>{{{}, ""},
                                           {{7}, "7"},
                                           {{7, 8}, "7, 8"},
                                           {{7, 8, 9}, "7 - 9"},
                                           {{1, 3, 4, 5, 9, 8}, "1, 3 - 5, 9, 8"},
                                           {{-1, 0, 1}, "-1 - 1"},
                                           {{kMost - 1, kMost, kLeast}, "2147483646, 2147483647, -2147483648"}})
        EXPECT_EQ(ListText(numbers), text);
    std::vector<std::int32_t> many = {0, 1, 2};
    for (std::int32_t i = 2; i < 200'000; ++i)
        many.push_back(2 * i);
    EXPECT_EQ(ListText(many, 20),
              "0 - 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, 34, 36, 38, 40 and 199979 more");
}
