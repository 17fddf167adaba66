#include "vxfileio/export/biff/RecordStream.h"

#include <gtest/gtest.h>

#include "tests/export/biff/RecordBytes.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace {

using YExcel::Blank;
using YExcel::RecordStream;
using YExcel::StreamSize;
using YExcel::YEOF;

std::string BlankBytes(unsigned row) { return U16(0x0201) + U16(6) + U16(row) + Zeros(4); }

TEST(RecordStreamTest, RecordsBeyondTheReservedRoomKeepThoseBefore) {
    for (const std::size_t room : {0U, 1U, 10U, 25U, 1000U}) {
        RecordStream stream(room);
        StreamSize size;
        std::string expected;
        for (std::uint16_t row = 0; row < 20; ++row) {
            EXPECT_EQ(stream.Position(), expected.size());
            stream.Put(Blank{.row = row});
            size.Put(Blank{.row = row});
            expected += BlankBytes(row);
        }
        EXPECT_EQ(ToString(stream.Bytes()), expected);
        EXPECT_EQ(size.Position(), expected.size());
    }
}

TEST(RecordStreamTest, ReplacingTouchesOneRecordOnly) {
    RecordStream stream;
    stream.Put(Blank{.row = 1});
    const std::size_t position = stream.Position();
    stream.Put(Blank{.row = 2});
    stream.Put(YEOF());
    stream.Replace(position, Blank{.row = 7});
    EXPECT_EQ(ToString(stream.Bytes()), BlankBytes(1) + BlankBytes(7) + U16(0x000A) + U16(0));
    EXPECT_TRUE(RecordStream().Bytes().empty());
}

}  // namespace
