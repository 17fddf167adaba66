#pragma once

#include <cstdint>
#include <string_view>

#include "vxfileio/export/biff/CountedString.h"
#include "vxfileio/export/biff/GlobalRecords.h"

/// @file
/// A formula and the records that may follow it. Saved workbooks have none of them. Rows and columns count from 0.

namespace YExcel {

/// A parsed expression: its size and its bytes. The caller owns the bytes; those after the first 65535 are cut off.
struct Expression {
    std::string_view bytes;

    static constexpr void Fields(auto& self, auto& body) { body.template Counted<std::uint16_t>(self.bytes); }
};

/// A rectangle of cells, including the first and the last ones.
struct CellRange {
    std::uint16_t firstRow = 0;
    std::uint16_t lastRow = 0;
    std::uint8_t firstColumn = 0;
    std::uint8_t lastColumn = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.firstRow, self.lastRow, self.firstColumn, self.lastColumn);
    }
};

/// A formula that fills a rectangle.
struct Array {
    static constexpr std::uint16_t kCode = 0x0221;

    CellRange range = {};
    std::uint16_t options = 0;
    Expression expression = {};

    static constexpr void Fields(auto& self, auto& body) {
        body(self.range, self.options, kReserved<std::uint32_t>, self.expression);
    }
};

/// A formula shared by several cells. It has two possible codes.
template <std::uint16_t code>
struct SharedFormula {
    static constexpr std::uint16_t kCode = code;

    CellRange range = {};
    std::uint8_t useCount = 0;
    Expression expression = {};

    static constexpr void Fields(auto& self, auto& body) {
        body(self.range, kReserved<std::uint8_t>, self.useCount, self.expression);
    }
};
using ShrFmla = SharedFormula<0x00BC>;
using ShrFmla1 = SharedFormula<0x04BC>;

/// A table of a formula's results for rows and columns of input.
struct Table {
    static constexpr std::uint16_t kCode = 0x0036;

    CellRange range = {};
    std::uint16_t options = 0;
    std::uint16_t rowInputRow = 0;
    std::uint16_t rowInputColumn = 0;
    std::uint16_t columnInputRow = 0;
    std::uint16_t columnInputColumn = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.range, self.options, self.rowInputRow, self.rowInputColumn, self.columnInputRow,
             self.columnInputColumn);
    }
};

/// The text result of a formula.
struct String {
    static constexpr std::uint16_t kCode = 0x0207;

    SstString text = SstString();

    static constexpr void Fields(auto& self, auto& body) { body(self.text); }
};

/// A formula with its last result. At most one of the records above follows it; the caller stores that record, too.
struct Formula {
    static constexpr std::uint16_t kCode = 0x0006;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;
    double result = 0.0;
    std::uint16_t options = 0;
    Expression expression = {};

    static constexpr void Fields(auto& self, auto& body) {
        body(self.row, self.column, self.xf, self.result, self.options, kReserved<std::uint32_t>, self.expression);
    }
};

}  // namespace YExcel
