#include "vxfileio/helpers/NumberText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include "tests/support/CommaLocale.h"
#include "vxfileio/helpers/Digits.h"

namespace {

using namespace vxfileio::helpers;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string General(double value) { return std::string(CNumberText::General(value).View()); }

TEST(NumberTextTest, GeneralFormHasSixSignificantDigits) {
    EXPECT_EQ(General(0.0), "0");
    EXPECT_EQ(General(-0.0), "-0");
    EXPECT_EQ(General(0.0002), "0.0002");
    EXPECT_EQ(General(0.00001), "1e-05");
    EXPECT_EQ(General(-2.50004e-7), "-2.50004e-07");
    EXPECT_EQ(General(9.9999951e-11), "1e-10");
    EXPECT_EQ(General(123456.5), "123456");  // halves round to even
    EXPECT_EQ(General(999999.5), "1e+06");
    EXPECT_EQ(General(1.0 / 3), "0.333333");
    EXPECT_EQ(General(-1e300), "-1e+300");
    EXPECT_EQ(General(std::numeric_limits<double>::denorm_min()), "4.94066e-324");
    EXPECT_EQ(General(kInfinity), "inf");
    EXPECT_EQ(General(-kInfinity), "-inf");
    EXPECT_EQ(General(std::nan("")), "nan");
    EXPECT_EQ(General(-std::nan("")), "nan");
}

TEST(NumberTextTest, GeneralFormIsTheNearestOfSixDigits) {
    const auto expect = [](double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%g", value);
        ASSERT_EQ(General(value), text);
        ASSERT_EQ(General(-value), "-" + std::string(text));
    };
    std::mt19937_64 random(1);
    for (int i = 0; i < 100'000; ++i) {
        const auto digits = static_cast<double>(random() % 10'000'000);
        for (const double scale : {1e1, 1e3, 1e4, 1e5, 1e6, 1e7, 1e9, 1e10, 1e11, 1e12, 1e17, 1e22})
            expect(digits / scale);  // includes the values nearest to the middle between two texts
        expect(std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 100) - 115));
    }
    for (int exponent = -20; exponent < 9; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, 1e9), power * 0.9999995})
            expect(value);
    }
    for (int halves = 200'001; halves < 2'000'000; halves += 2)
        expect(halves / 2.0);  // each is in the middle between two texts, so the even one is right
}

TEST(NumberTextTest, DecimalsAreReadAsTheNearestValue) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 200'000; ++i) {
        std::string text = std::to_string(random() >> (random() % 64));
        text.insert(random() % (text.size() + 1), ".");
        text.insert(0, random() % 5, '0');
        if (random() % 8 == 0) text += "e-0" + std::to_string(random() % 30);
        ASSERT_EQ(ParseDouble(text), std::strtod(text.c_str(), nullptr)) << text;
    }
    EXPECT_EQ(ParseDouble(".5") + ParseDouble("5.") + ParseDouble("1.2.3"), 6.7);
    EXPECT_EQ(ParseDouble("."), 0.0);
    EXPECT_EQ(ParseDouble("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(ParseDouble("0.00000000000000000000001"), 1e-23);
}

TEST(NumberTextTest, TakeDecimalRemovesTheNumberFromTheFront) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 100'000; ++i) {
        std::string text = std::to_string(random() >> (11 + random() % 53));
        if (random() % 4 > 0) text.insert(random() % (text.size() + 1), ".");
        if (random() % 2 > 0) text.insert(0, "-");
        if (random() % 4 > 0) text += "e-0" + std::to_string(random() % 7);
        for (const char* end : {"", ";12345678", "-1", " ", "x"}) {
            const std::string all = text + end;
            std::string_view rest = all;
            double value = 0.0;
            ASSERT_TRUE(TakeDecimal(rest, value)) << all;
            ASSERT_EQ(value, std::strtod(text.c_str(), nullptr)) << all;
            ASSERT_EQ(rest, end) << all;
        }
    }
    for (const std::string_view text : {"", "-", ".", ";", " 1", "--1", "nan", "1e5", "1e-5", "1e+05", "1e-005",
                                        "0.5E-03", "1e-23", "0.1e-22", "9007199254740993", "0.00000000000000000001"}) {
        std::string_view rest = text;
        double value = 7.0;
        EXPECT_FALSE(TakeDecimal(rest, value)) << text;
        EXPECT_TRUE(rest.data() == text.data() && rest == text && value == 7.0) << text;
    }
}

TEST(NumberTextTest, RoundTripFormIsDifferentForEveryValue) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {0.0, "0."},
        {-0.0, "-0."},
        {4.0, "4."},
        {-0.5, "-0.5"},
        {0.1, "0.1"},
        {0.0625, "6.25e-002"},
        {1.0 / 3, "0.3333333333333333"},
        {123456.75, "123456.75"},
        {1e37, "10000000000000000000000000000000000000."},
        {1.5e37, "15000000000000000000000000000000000000."},
        {1e38, "1.e+038"},
        {9007199254740993.0, "9007199254740992."},
        {-1.7976931348623157e308, "-1.7976931348623157e+308"},
        {4.9406564584124654e-324, "5.e-324"},
        {kInfinity, "inf"},
        {-kInfinity, "-inf"},
        {-std::nan(""), "nan"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CNumberText::RoundTrip(c.value).View(), c.text);
        if (!std::isnan(c.value)) {
            EXPECT_EQ(ParseDouble(c.text), c.value) << c.text;
        }
    }
    std::mt19937_64 random(4);
    for (int i = 0; i < 100'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        const std::string text(CNumberText::RoundTrip(value).View());
        ASSERT_TRUE(std::isnan(value) || std::strtod(text.c_str(), nullptr) == value) << text;
    }
}

TEST(NumberTextTest, AnyNumberOfDigitsIsParsedAsTheStandardLibraryDoes) {
    const std::string kEnds[] = {"",   ";",     "/9",   ":9",    "a123456789",
                                 ".5", "\2009", "\260", "\3771", std::string("\0009", 2)};
    std::mt19937_64 random(1);
    for (int i = 0; i < 200'000; ++i) {
        std::string text(random() % 24, '0');
        for (char& digit : text)
            digit = static_cast<char>('0' + random() % (random() % 4 == 0 ? 1 : 10));
        text += kEnds[random() % std::size(kEnds)];
        const char* const end = text.data() + text.size();
        std::uint64_t whole = 0;
        const bool fits = std::from_chars(text.data(), end, whole).ec != std::errc::result_out_of_range;
        ASSERT_EQ(ParseUInt64(text), fits ? whole : std::numeric_limits<std::uint64_t>::max()) << text;
        std::int64_t negative = 0;
        const std::string minus = "-" + text;
        const bool fitsToo =
            std::from_chars(minus.data(), minus.data() + minus.size(), negative).ec != std::errc::result_out_of_range;
        ASSERT_EQ(ParseInt64(minus), fitsToo ? negative : std::numeric_limits<std::int64_t>::min()) << text;
        const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
        const bool isShort = minus.size() >= 17 && digits >= 1 && digits <= 15;
        ASSERT_EQ(ParseShortWhole(minus), isShort ? std::optional(negative) : std::nullopt) << text;
        double decimal = 0.0;
        std::from_chars(text.data(), end, decimal, std::chars_format::fixed);
        ASSERT_EQ(ParseDouble(text), decimal) << text;
    }
}

TEST(NumberTextTest, DoublesAreParsedUpToTheFirstOtherCharacter) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"", 0.0},
        {"x", 0.0},
        {"-", 0.0},
        {"--1", 0.0},
        {"0,5", 0.0},
        {"0.5", 0.5},
        {" +.5e1x", 5.0},
        {"4.", 4.0},
        {"6.25e-002", 0.0625},
        {"-1e3", -1000.0},
        {"1e", 1.0},
        {"1e+", 1.0},
        {"1.5.5", 1.5},
        {"inf", kInfinity},
        {"-inf", -kInfinity},
        {"1e309", kInfinity},
        {"-1e309", -kInfinity},
        {"1e-400", 0.0},
        {"0.0000001e320", kInfinity},
        {"1e99999999999999999999", kInfinity},
        {"1e-99999999999999999999", 0.0},
        {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ParseDouble(c.text), c.value) << c.text;
    EXPECT_EQ(ParseDouble("0." + std::string(400, '0') + "1x999"), 0.0);
    EXPECT_FALSE(std::signbit(ParseDouble("-x")));
    EXPECT_TRUE(std::signbit(ParseDouble("-0")));
    EXPECT_TRUE(std::isnan(ParseDouble("nan")));
    EXPECT_EQ(ParseDouble("1" + std::string(400, '0')), kInfinity);
    EXPECT_EQ(ParseDouble("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(ParseDouble("0." + std::string(400, '0') + "1e402"), 10.0);
}

TEST(NumberTextTest, ALocaleWithADecimalCommaHasNoEffect) {
    const CCommaLocale comma;
    EXPECT_EQ(General(1234.5), "1234.5");
    EXPECT_EQ(CNumberText::RoundTrip(1234.5).View(), "1234.5");
    EXPECT_EQ(ParseDouble("1234.5"), 1234.5);
    EXPECT_EQ(ParseDouble("1,5"), 1.0);
}

}  // namespace
