#include "vxfileio/export/biff/RecordStream.h"

#include <gtest/gtest.h>

#include "tests/export/biff/RecordBytes.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace {

using YExcel::Blank;
using YExcel::CRecordStream;
using YExcel::CStreamSize;
using YExcel::SharedStringTable;
using YExcel::SstString;
using YExcel::YEOF;

constexpr std::size_t kPiece = 65536;

std::string BlankBytes(unsigned row) { return U16(0x0201) + U16(6) + U16(row) + Zeros(4); }

TEST(RecordStreamTest, AllPiecesButTheLastAreFull) {
    for (const unsigned eofs :
         {0U, 1U, 2U, 3U, 4U}) {  // 4 bytes each; 6553 records of 10 bytes leave 6 bytes of a piece
        std::vector<std::string> pieces;
        CRecordStream stream([&](auto piece) { pieces.push_back(ToString(piece)); });
        CStreamSize size;
        std::string expected;
        const auto put = [&](const auto& record, const std::string& bytes) {
            EXPECT_EQ(stream.Position(), expected.size());
            stream.Put(record);
            size.Put(record);
            expected += bytes;
        };
        for (unsigned i = 0; i < eofs; ++i)
            put(YEOF(), U16(0x000A) + U16(0));
        for (unsigned row = 0; row < 13200; ++row)
            put(Blank{.row = static_cast<std::uint16_t>(row)}, BlankBytes(row));
        EXPECT_EQ(size.Position(), expected.size());
        stream.Finish();
        EXPECT_EQ(pieces, (std::vector<std::string>{expected.substr(0, kPiece), expected.substr(kPiece, kPiece),
                                                    expected.substr(2 * kPiece)}));
    }
}

TEST(RecordStreamTest, NoEmptyPieceIsDelivered) {
    int pieces = 0;
    CRecordStream stream([&](auto piece) {
        EXPECT_EQ(piece.size(), kPiece);
        ++pieces;
    });
    stream.Finish();
    EXPECT_EQ(pieces, 0);
    for (std::size_t i = 0; i < kPiece / 4; ++i)
        stream.Put(YEOF());
    stream.Finish();
    EXPECT_EQ(pieces, 1);
}

TEST(RecordStreamTest, LongBodySpansPieces) {
    const std::string x(32767, 'x');
    SharedStringTable table{.total = 9, .strings = std::deque(9, SstString(std::string_view(x)))};
    std::string text = U32(9) + U32(9);  // the bodies without the option bytes at their beginnings
    for (int i = 0; i < 9; ++i)
        text += U16(32767) + U8(0) + x;
    std::string bytes;
    CRecordStream stream([&](auto piece) { bytes += ToString(piece); });
    stream.Put(Blank{.row = 1});
    stream.Put(table);
    stream.Put(Blank{.row = 2});
    EXPECT_EQ(stream.Position(), 10 + YExcel::RecordSize(table) + 10);
    stream.Finish();
    const auto records = RecordsOf(bytes);
    EXPECT_EQ(records.front().body + records.back().body, BlankBytes(1).substr(4) + BlankBytes(2).substr(4));
    std::string found = records[1].body;
    for (std::size_t i = 2; i + 1 < records.size(); ++i)
        found += records[i].body.substr(records[i].body[0] == 0 ? 1 : 0);
    EXPECT_EQ(found, text);
    EXPECT_EQ(bytes.size(), 20 + YExcel::RecordSize(table));
}

}  // namespace
