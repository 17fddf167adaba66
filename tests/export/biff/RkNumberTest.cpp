#include "vxfileio/export/biff/RkNumber.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

using YExcel::DecodeRK;
using YExcel::EncodeRK;
using YExcel::Truncate;
using YExcel::TwoDecimalTest;

struct CCase {
    double value;
    std::uint32_t word;
    double stored;  ///< The value that a reader gets.
};

// The reference workbook `rows.xls` has more of them, computed without the library.
TEST(RkNumberTest, ShortDoublesAndTheirPrecision) {
    const std::array<CCase, 4> cases = {{{-0.0, 0x80000000, 0.0},
                                         {-12.5, 0xC0938801, -12.5},
                                         {5242.89, 0x41200001, 5242.88},          // 524289 doesn't fit 30 bits
                                         {5368709.12, 0x41C00001, 5368709.12}}};  // 536870912 * 100 wraps to the mark
    for (const CCase& c : cases) {
        EXPECT_TRUE(TwoDecimalTest(c.value)) << c.value;
        EXPECT_EQ(EncodeRK(c.value), c.word) << c.value;
        EXPECT_DOUBLE_EQ(DecodeRK(c.word), c.stored) << c.value;
    }
}

TEST(RkNumberTest, DoublesThatNeedMoreBitsKeepTheirFullForm) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {214749.0, -214749.0, 123456789.0, 153.2738, 0.0001, 1.0 / 3.0, 5368709.2, 18 * 0.3,
                               1e300, -1e300, kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(TwoDecimalTest(value)) << value;
}

TEST(RkNumberTest, TruncationIsTowardZeroAndReturnsOneValueForAllThatDoesNotFit) {
    EXPECT_EQ(Truncate(1.99), 1);
    EXPECT_EQ(Truncate(-1.99), -1);
    EXPECT_EQ(Truncate(2147483647.9), 2147483647);
    EXPECT_EQ(Truncate(-2147483648.9), -2147483647 - 1);
    for (const double value : {2147483648.0, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(Truncate(value), -2147483647 - 1) << value;
}

TEST(RkNumberTest, IntegersOfThirtyBitsAreDecoded) {
    EXPECT_EQ(DecodeRK(0x7FFFFFFE), 536870911.0);
    EXPECT_EQ(DecodeRK(0x80000002), -536870912.0);
    EXPECT_EQ(DecodeRK(1299U * 4 + 3), 12.0);  // hundredths of a whole number are cut off
    EXPECT_EQ(DecodeRK(static_cast<std::uint32_t>(-1299) * 4 + 3), -12.0);
}

}  // namespace
