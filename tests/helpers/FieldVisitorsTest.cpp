#include "vxfileio/helpers/FieldVisitors.h"

#include <gtest/gtest.h>

#include <string>

#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/FormulaRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/SheetRecords.h"
#include "vxfileio/export/compound/DirectoryEntry.h"
#include "vxfileio/export/compound/StorageHeader.h"

namespace {

using namespace vxfileio::helpers;

/// Returns bytes that differ from each other and from all defaults.
std::string Pattern(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(i % 251 + 2);
    return bytes;
}

/// Loads an object from a separate allocation, so that a sanitizer notices reads after the end.
template <class Object>
bool Load(const std::string& bytes, Object& object) {
    const std::vector<char> own(bytes.begin(), bytes.end());
    CFieldLoad load(std::as_bytes(std::span(own)));
    load(object);
    return load.TookAll();
}

std::string Store(const auto& object) {
    CFieldSize size;
    size(object);
    std::string bytes(size.Size(), '\0');
    CFieldStore(std::as_writable_bytes(std::span(bytes)).data())(object);
    return bytes;
}

/// Expects that every byte of a fixed-size object is loaded, except reserved ones, which are stored as 0. Expects that
/// shorter and longer bodies are refused.
template <class Object>
void ExpectEveryByte(std::size_t size, const std::vector<std::size_t>& reserved = {}) {
    const std::string bytes = Pattern(size);
    Object loaded{};
    EXPECT_TRUE(Load(bytes, loaded)) << size;
    std::string expected = bytes;
    for (const std::size_t i : reserved)
        expected[i] = '\0';
    EXPECT_EQ(Store(loaded), expected);
    for (std::size_t shorter = 0; shorter < size; ++shorter) {
        Object cut{};
        EXPECT_FALSE(Load(bytes.substr(0, shorter), cut)) << shorter << " of " << size;
    }
    Object longer{};
    EXPECT_FALSE(Load(bytes + 'x', longer)) << size;
}

TEST(FieldVisitorsTest, EveryByteOfAFixedObjectIsLoadedAndEveryPrefixRefused) {
    using namespace YExcel;
    ExpectEveryByte<BOF>(16);
    ExpectEveryByte<Window1>(18);
    ExpectEveryByte<XF>(20);
    ExpectEveryByte<Dimensions>(14, {12, 13});
    ExpectEveryByte<Window2>(18, {8, 9, 14, 15, 16, 17});
    ExpectEveryByte<Row>(16, {8, 9, 10, 11});
    ExpectEveryByte<RK>(10);
    ExpectEveryByte<Number>(14);
    ExpectEveryByte<LabelSST>(10);
    ExpectEveryByte<Blank>(6);
    ExpectEveryByte<BoolErr>(8);
    ExpectEveryByte<Table>(16);
    ExpectEveryByte<vxfileio::compound::StorageHeader>(512);
    ExpectEveryByte<vxfileio::compound::DirectoryEntry>(128);
}

TEST(FieldVisitorsTest, AnIncompleteFieldAndAllAfterItKeepTheirValues) {
    YExcel::BoolErr cell{.row = 7, .column = 7, .xf = 7, .value = 7, .isError = 7};
    EXPECT_FALSE(Load(std::string("\x01\x02\x03", 3), cell));
    EXPECT_EQ(cell.row, 0x0201);
    EXPECT_EQ(cell.column, 7);
    EXPECT_EQ(cell.xf, 7);
    EXPECT_EQ(cell.value, 7) << "the byte that is left isn't used";
}

// The list takes what the field after it leaves, which is as large as an item.
TEST(FieldVisitorsTest, AListWithoutACountEndsBeforeTheFieldAfterIt) {
    const std::string bytes("\x01\0\x02\0\x03\0\x04\0\x05\0", 10);
    CFieldLoad load(std::as_bytes(std::span(bytes)));
    YExcel::MulBlank cells;
    load(cells);
    EXPECT_TRUE(load.TookAll());
    EXPECT_EQ(std::vector(cells.xfs.begin(), cells.xfs.end()), (std::vector<std::uint16_t>{3, 4}));
    EXPECT_EQ(cells.lastColumn, 5);
}

TEST(FieldVisitorsTest, ATooLargeCountLoadsTheExistingItems) {
    const std::string bytes("\x09\0\0\0\xFF\xFF\xFF\xFF\x01\0\0a\x02\0\0b", 16);
    CFieldLoad load(std::as_bytes(std::span(bytes)));
    YExcel::SharedStringTable table;
    load(table);
    EXPECT_FALSE(load.IsWhole());
    ASSERT_EQ(table.strings.size(), 1U);
    EXPECT_EQ(std::get<std::string_view>(table.strings[0].Text()), "a");
    EXPECT_EQ(load.Missing(), 0xFFFFFFFEU);
}

}  // namespace
