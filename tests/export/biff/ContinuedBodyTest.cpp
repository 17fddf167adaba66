#include <gtest/gtest.h>

#include <deque>

#include "tests/export/biff/RecordBytes.h"
#include "vxfileio/export/biff/GlobalRecords.h"

namespace {

using YExcel::SharedStringTable;
using YExcel::SstString;

using CBodies = std::vector<std::string>;

/// Returns the bodies of a record and of its CONTINUE records.
CBodies BodiesOf(const YExcel::Record auto& record, std::uint32_t code) {
    const std::string bytes = BytesOf(record);
    EXPECT_EQ(bytes.size(), YExcel::RecordSize(record));
    CBodies bodies;
    for (const CFoundRecord& found : RecordsOf(bytes)) {
        EXPECT_EQ(found.code, bodies.empty() ? code : 0x003CU);
        bodies.push_back(found.body);
    }
    return bodies;
}

/// Bytes followed by a number. No record other than the shared strings is long enough to be continued.
struct CLong {
    static constexpr std::uint16_t kCode = 0x1234;
    std::string_view bytes;
    std::uint32_t number;

    static constexpr void Fields(auto& self, auto& body) { body(self.bytes, self.number); }
};

TEST(ContinuedBodyTest, BytesAndNumbersAreSplitWhereARecordIsFull) {
    const std::string x(20000, 'x');
    const auto bodies = [&](std::size_t count) {
        return BodiesOf(CLong{std::string_view(x).substr(0, count), 0x44332211}, 0x1234);
    };
    EXPECT_EQ(bodies(8220), (CBodies{x.substr(0, 8220) + "\x11\x22\x33\x44"}));
    EXPECT_EQ(bodies(8221), (CBodies{x.substr(0, 8221) + "\x11\x22\x33", "\x44"}));
    EXPECT_EQ(bodies(8224), (CBodies{x.substr(0, 8224), "\x11\x22\x33\x44"}));
    EXPECT_EQ(bodies(16446), (CBodies{x.substr(0, 8224), x.substr(0, 8222) + "\x11\x22", "\x33\x44"}));
}

/// Narrow and wide strings, by their numbers of characters.
class CStrings {
 public:
    CStrings() = default;
    CStrings(const CStrings&) = delete;
    CStrings& operator=(const CStrings&) = delete;

    CStrings& Narrow(std::size_t count) {
        m_table.strings.emplace_back(std::string_view(m_narrow.emplace_back(count, 'n')));
        return *this;
    }
    CStrings& Wide(std::size_t count) {
        m_table.strings.emplace_back(std::u16string_view(m_wide.emplace_back(count, u'\u0457')));
        return *this;
    }

    const SharedStringTable& Table() const { return m_table; }
    /// Returns the bodies of the records that hold the strings, without the two counts at the beginning.
    CBodies Bodies() const {
        CBodies bodies = BodiesOf(m_table, 0x00FC);
        EXPECT_EQ(bodies[0].substr(0, 8), U32(0) + U32(m_table.strings.size()));
        bodies[0].erase(0, 8);
        return bodies;
    }

 private:
    std::deque<std::string> m_narrow;
    std::deque<std::u16string> m_wide;
    SharedStringTable m_table;
};

std::string Narrow(std::size_t count) { return std::string().append(count, 'n'); }
std::string Wide(std::size_t count) { return Units(std::u16string(count, u'\u0457')); }
/// The bytes before the characters of a string, and before those that continue it in the next record.
std::string NarrowHead(std::size_t count) { return U16(count) + U8(0); }
std::string WideHead(std::size_t count) { return U16(count) + U8(1); }
const std::string kNarrowGoesOn = U8(0);
const std::string kWideGoesOn = U8(1);

// The first record has room for 8216 bytes of strings, 8213 of them characters.
TEST(ContinuedBodyTest, NarrowStringThatFillsTheRecordEndsThere) {
    const std::string full = NarrowHead(8213) + Narrow(8213);
    EXPECT_EQ(CStrings().Narrow(8213).Bodies(), (CBodies{full}));
    EXPECT_EQ(CStrings().Narrow(8213).Narrow(1).Bodies(), (CBodies{full, NarrowHead(1) + "n"}));
    EXPECT_EQ(CStrings().Narrow(8213).Wide(1).Bodies(), (CBodies{full, WideHead(1) + Wide(1)}));
}

TEST(ContinuedBodyTest, NarrowStringContinuesAfterAnOptionByteInEachRecord) {
    EXPECT_EQ(CStrings().Narrow(8214).Narrow(2).Bodies(),
              (CBodies{NarrowHead(8214) + Narrow(8213), kNarrowGoesOn + "n" + NarrowHead(2) + "nn"}));
    const std::string wholeRecord = kNarrowGoesOn + Narrow(8223);
    EXPECT_EQ(CStrings().Narrow(8213 + 3 * 8223 + 5).Narrow(2).Bodies(),
              (CBodies{NarrowHead(32887) + Narrow(8213), wholeRecord, wholeRecord, wholeRecord,
                       kNarrowGoesOn + Narrow(5) + NarrowHead(2) + "nn"}));
    // A string that ends with its record leaves no option byte to the next.
    EXPECT_EQ(CStrings().Narrow(8213 + 2 * 8223).Bodies(),
              (CBodies{NarrowHead(24659) + Narrow(8213), wholeRecord, wholeRecord}));
    EXPECT_EQ(CStrings().Narrow(8213 + 2 * 8223).Narrow(2).Bodies(),
              (CBodies{NarrowHead(24659) + Narrow(8213), wholeRecord, wholeRecord, NarrowHead(2) + "nn"}));
}

TEST(ContinuedBodyTest, StringThatMustBeSplitDoesNotBeginInTheLastElevenBytes) {
    const std::string elevenLeft = NarrowHead(8202) + Narrow(8202);
    EXPECT_EQ(CStrings().Narrow(8202).Narrow(8).Bodies(), (CBodies{elevenLeft + NarrowHead(8) + Narrow(8)}));
    EXPECT_EQ(CStrings().Narrow(8202).Narrow(8).Narrow(1).Bodies(),
              (CBodies{elevenLeft + NarrowHead(8) + Narrow(8), NarrowHead(1) + "n"}));
    EXPECT_EQ(CStrings().Narrow(8202).Narrow(9).Bodies(), (CBodies{elevenLeft, NarrowHead(9) + Narrow(9)}));
    EXPECT_EQ(CStrings().Narrow(8202).Wide(4).Bodies(), (CBodies{elevenLeft + WideHead(4) + Wide(4)}));
    EXPECT_EQ(CStrings().Narrow(8202).Wide(5).Bodies(), (CBodies{elevenLeft, WideHead(5) + Wide(5)}));
    const std::string twelveLeft = NarrowHead(8201) + Narrow(8201);
    EXPECT_EQ(CStrings().Narrow(8201).Narrow(10).Bodies(),
              (CBodies{twelveLeft + NarrowHead(10) + Narrow(9), kNarrowGoesOn + Narrow(1)}));
    EXPECT_EQ(CStrings().Narrow(8201).Wide(5).Bodies(),
              (CBodies{twelveLeft + WideHead(5) + Wide(4), kWideGoesOn + Wide(1)}));
}

// A CONTINUE record has room for 8224 bytes of strings.
TEST(ContinuedBodyTest, StringThatMovesToANewRecordMayFillItOrContinue) {
    const std::string first = NarrowHead(8213) + Narrow(8213);
    EXPECT_EQ(CStrings().Narrow(8213).Narrow(8221).Bodies(), (CBodies{first, NarrowHead(8221) + Narrow(8221)}));
    EXPECT_EQ(CStrings().Narrow(8213).Narrow(8221).Narrow(1).Bodies(),
              (CBodies{first, NarrowHead(8221) + Narrow(8221), NarrowHead(1) + "n"}));
    EXPECT_EQ(CStrings().Narrow(8213).Narrow(8222).Bodies(),
              (CBodies{first, NarrowHead(8222) + Narrow(8221), kNarrowGoesOn + Narrow(1)}));
    EXPECT_EQ(CStrings().Narrow(8213).Wide(4111).Bodies(),
              (CBodies{first, WideHead(4111) + Wide(4110), kWideGoesOn + Wide(1)}));
}

TEST(ContinuedBodyTest, WideCharactersAreNeverSplit) {
    // An even number of bytes is left, so one of them stays unused.
    EXPECT_EQ(CStrings().Wide(4107).Narrow(2).Bodies(),
              (CBodies{WideHead(4107) + Wide(4106), kWideGoesOn + Wide(1) + NarrowHead(2) + "nn"}));
    const std::string wholeRecord = kWideGoesOn + Wide(4111);
    EXPECT_EQ(CStrings().Wide(4106 + 3 * 4111 + 2).Narrow(2).Bodies(),
              (CBodies{WideHead(16441) + Wide(4106), wholeRecord, wholeRecord, wholeRecord,
                       kWideGoesOn + Wide(2) + NarrowHead(2) + "nn"}));
    EXPECT_EQ(CStrings().Wide(4106 + 2 * 4111).Narrow(2).Bodies(),
              (CBodies{WideHead(12328) + Wide(4106), wholeRecord, wholeRecord, NarrowHead(2) + "nn"}));
    // An odd number is left; all of it is used.
    EXPECT_EQ(CStrings().Narrow(2).Wide(4105).Bodies(),
              (CBodies{NarrowHead(2) + "nn" + WideHead(4105) + Wide(4104), kWideGoesOn + Wide(1)}));
}

}  // namespace
