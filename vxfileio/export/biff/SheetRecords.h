#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "vxfileio/export/biff/GlobalRecords.h"

/// @file
/// The records around the cells of a sheet. Rows and columns count from 0.

namespace YExcel {

/// The stream offset of each row block's `DBCell`.
struct Index {
    static constexpr std::uint16_t kCode = 0x020B;

    std::uint32_t firstUsedRow = 0;
    std::uint32_t firstUnusedRow = 0;
    std::vector<std::uint32_t> dbCellPositions = {};

    static constexpr void Fields(auto& self, auto& body) {
        body(kReserved<std::uint32_t>, self.firstUsedRow, self.firstUnusedRow, kReserved<std::uint32_t>,
             self.dbCellPositions);
    }
};

/// The used part of the sheet.
struct Dimensions {
    static constexpr std::uint16_t kCode = 0x0200;

    std::uint32_t firstUsedRow = 0;
    std::uint32_t endRow = 0;  ///< Last used row + 1; the same for the column below.
    std::uint16_t firstUsedColumn = 0;
    std::uint16_t endColumn = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.firstUsedRow, self.endRow, self.firstUsedColumn, self.endColumn, kReserved<std::uint16_t>);
    }
};

/// How the window shows the sheet.
struct Window2 {
    static constexpr std::uint16_t kCode = 0x023E;
    static constexpr std::uint16_t kSelected = 0x0200;  ///< In `options`.

    std::uint16_t options = 0x06B6;
    std::uint16_t firstRow = 0;
    std::uint16_t firstColumn = 0;
    std::uint16_t gridlineColour = 64;
    std::uint16_t pageBreakZoom = 0;
    std::uint16_t normalZoom = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.options, self.firstRow, self.firstColumn, self.gridlineColour, kReserved<std::uint16_t>);
        body(self.pageBreakZoom, self.normalZoom, kReserved<std::uint32_t>);
    }
};

/// A row with cells. Its height is in twentieths of a point.
struct Row {
    static constexpr std::uint16_t kCode = 0x0208;

    std::uint16_t row = 0;
    std::uint16_t firstCell = 0;
    std::uint16_t endCell = 0;  ///< Last cell + 1.
    std::uint16_t height = 255;
    std::uint32_t options = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.row, self.firstCell, self.endCell, self.height, kReserved<std::uint16_t>, kReserved<std::uint16_t>,
             self.options);
    }
};

/// The end of a row block: the distance back to its first `Row`, and the offsets to the cells of each row. The first
/// offset counts from the second `Row` to the first cell, the others from row to row. The caller owns the offsets,
/// which must outlive the record.
struct DBCell {
    static constexpr std::uint16_t kCode = 0x00D7;

    std::uint32_t firstRowOffset = 0;
    std::span<const std::uint16_t> rowOffsets = {};

    static constexpr void Fields(auto& self, auto& body) { body(self.firstRowOffset, self.rowOffsets); }
};

}  // namespace YExcel
