#include "vxfileio/export/biff/GlobalRecords.h"

#include <gtest/gtest.h>

#include "tests/export/biff/RecordBytes.h"

namespace {

using namespace YExcel;

TEST(GlobalRecordsTest, StyleMayHaveAName) {
    const Style named{.xfAndFlag = 3, .name = SstString(std::string_view("Mine"))};
    ExpectRecord(named, U16(0x0293) + U16(9) + U16(3) + U16(4) + U8(0) + "Mine");
}

TEST(GlobalRecordsTest, SheetNamesAreCutToAOneByteLength) {
    const auto named = [](auto name) { return BytesOf(BoundSheet{.position = 749, .name = SmallString(name)}); };
    const std::string head = U32(749) +      // position
                             U8(0) + U8(0);  // visibility, type
    EXPECT_EQ(named(std::string_view("Results")), U16(0x0085) + U16(15) + head + U8(7) + U8(0) + "Results");
    EXPECT_EQ(named(std::u16string_view(u"\u0416")), U16(0x0085) + U16(10) + head + U8(1) + U8(1) + "\x16\x04");
    EXPECT_EQ(named(std::string_view()), U16(0x0085) + U16(8) + head + U8(0) + U8(0));
    EXPECT_EQ(named(std::string_view(std::string(300, 'x'))),
              U16(0x0085) + U16(263) + head + U8(255) + U8(0) + std::string(255, 'x'));
}

}  // namespace
