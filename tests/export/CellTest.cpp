#include "vxfileio/export/Cell.h"

#include <gtest/gtest.h>

namespace {

using YExcel::Cell;
using YExcel::CellType;

TEST(CellTest, HoldsOneValueAtATime) {
    Cell cell;
    EXPECT_EQ(cell.Type(), CellType::Undefined);
    cell.SetInteger(-7);
    EXPECT_EQ(cell.Type(), CellType::Integer);
    EXPECT_EQ(cell.GetInteger(), -7);
    EXPECT_EQ(cell.GetDouble(), -7.0);
    cell.SetDouble(-2.75);
    EXPECT_EQ(cell.Type(), CellType::Double);
    EXPECT_EQ(cell.GetDouble(), -2.75);
    EXPECT_EQ(cell.GetInteger(), -2);
    cell.SetDouble(1e300);
    EXPECT_EQ(cell.GetInteger(), -2147483647 - 1) << "what doesn't fit";
    cell.SetText("B07");
    EXPECT_EQ(cell.Type(), CellType::Text);
    EXPECT_EQ(cell.GetText(), "B07");
    EXPECT_EQ(cell.GetWideText(), u"");
    EXPECT_EQ(cell.GetDouble(), 0.0);
    EXPECT_EQ(cell.GetInteger(), 0);
    cell.SetWideText(u"\u00B5V");
    EXPECT_EQ(cell.Type(), CellType::WideText);
    EXPECT_EQ(cell.GetWideText(), u"\u00B5V");
    EXPECT_EQ(cell.GetText(), "");
    cell.Clear();
    EXPECT_EQ(cell.Type(), CellType::Undefined);
    EXPECT_EQ(cell.GetWideText(), u"");
}

TEST(CellTest, EmptyTextClears) {
    Cell cell;
    cell.SetDouble(1.0);
    cell.SetText("");
    EXPECT_EQ(cell.Type(), CellType::Undefined);
    cell.SetDouble(1.0);
    cell.SetWideText(u"");
    EXPECT_EQ(cell.Type(), CellType::Undefined);
    cell.SetText(std::string_view("\0x", 2));
    EXPECT_EQ(cell.Type(), CellType::Undefined);
}

TEST(CellTest, TextEndsAtItsNulAndAtTheLimitOfSpreadsheets) {
    Cell cell;
    cell.SetText(std::string_view("ab\0cd", 5));
    EXPECT_EQ(cell.GetText(), "ab");
    cell.SetText(std::string(32767, 'x'));
    EXPECT_EQ(cell.GetText(), std::string(32767, 'x'));
    cell.SetText(std::string(100000, 'x'));
    EXPECT_EQ(cell.GetText(), std::string(32767, 'x'));
    cell.SetWideText(std::u16string(32768, u'x'));
    EXPECT_EQ(cell.GetWideText(), std::u16string(32767, u'x'));
}

}  // namespace
