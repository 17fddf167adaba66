#include <gtest/gtest.h>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/VXExceptions.h"

using vxfileio::base::CExcConversion;
using vxfileio::base::CVXExceptions;

namespace {

TEST(ExceptionsTest, ReaderExceptionHasACodeAndItsOwnText) {
    EXPECT_EQ(CExcVXReader("text").GetCode(), -1);
    CExcVXReader failure(7, "first");
    const CExcVXReader copy = failure;
    failure = CExcVXReader("second");
    std::string text = copy.GetMsg();
    text += " changed";
    EXPECT_EQ(copy.GetCode(), 7);
    EXPECT_EQ(copy.GetMsg(), "first");
    EXPECT_EQ(failure.GetCode(), -1);
    EXPECT_EQ(failure.GetMsg(), "second");
}

TEST(ExceptionsTest, ConversionCodesHaveTheirTexts) {
    const std::string head = "Vexaprobe exception! \n";
    const struct {
        std::int32_t code;
        std::string text;
    } cases[] = {
        {0, ""},
        {1, head + "Dose out of range."},
        {2, head + "Error in series definition."},
        {3, head + "Volume out of range."},
        {4, head + "Error in volume string."},
        {5, head + "Voltage out of range."},
        {6, head + "Error in voltage string."},
        {7, head + "Rate out of range."},
        {8, head + "Error in rate string."},
        {9, head + "Time out of range."},
        {10, head + "Error in Time string."},
    };
    for (const auto& c : cases) {
        const CExcConversion failure(c.code);
        EXPECT_EQ(failure.code, c.code);
        EXPECT_EQ(failure.message, c.text) << c.code;
    }
    for (const std::int32_t code : {11, 12, 15, 16, 2147483647, -1, -2147483647 - 1})
        EXPECT_EQ(CExcConversion(code).message, "Vexaprobe: Unknown error occured") << code;
    EXPECT_EQ(CVXExceptions().code, 0);
    EXPECT_EQ(CVXExceptions().message, "");
}

}  // namespace
