#pragma once

#include <cstdint>
#include <span>

/// @file
/// The records of single cells and of runs of cells in a row. Rows and columns count from 0; `xf` is the index of the
/// cell's format. The caller owns the items of a run, which must outlive the record.

namespace YExcel {

/// A number in the short form of `RkNumber.h`.
struct RK {
    static constexpr std::uint16_t kCode = 0x027E;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;
    std::uint32_t word = 0;

    static constexpr void Fields(auto& self, auto& body) { body(self.row, self.column, self.xf, self.word); }
};

/// A run of numbers in the short form.
struct MulRK {
    static constexpr std::uint16_t kCode = 0x00BD;

    struct Item {
        std::uint16_t xf = 0;
        std::uint32_t word = 0;

        static constexpr void Fields(auto& self, auto& body) { body(self.xf, self.word); }
    };

    std::uint16_t row = 0;
    std::uint16_t firstColumn = 0;
    std::span<const Item> items = {};
    std::uint16_t lastColumn = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.row, self.firstColumn, self.items, self.lastColumn);
    }
};

/// A full double.
struct Number {
    static constexpr std::uint16_t kCode = 0x0203;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;
    double value = 0.0;

    static constexpr void Fields(auto& self, auto& body) { body(self.row, self.column, self.xf, self.value); }
};

/// A text, by its index in the shared strings.
struct LabelSST {
    static constexpr std::uint16_t kCode = 0x00FD;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;
    std::uint32_t stringIndex = 0;

    static constexpr void Fields(auto& self, auto& body) { body(self.row, self.column, self.xf, self.stringIndex); }
};

/// A cell with a format only. Saved workbooks have neither this record nor those below.
struct Blank {
    static constexpr std::uint16_t kCode = 0x0201;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;

    static constexpr void Fields(auto& self, auto& body) { body(self.row, self.column, self.xf); }
};

/// A run of blank cells, by their formats.
struct MulBlank {
    static constexpr std::uint16_t kCode = 0x00BE;

    std::uint16_t row = 0;
    std::uint16_t firstColumn = 0;
    std::span<const std::uint16_t> xfs = {};
    std::uint16_t lastColumn = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.row, self.firstColumn, self.xfs, self.lastColumn);
    }
};

/// A boolean or an error code.
struct BoolErr {
    static constexpr std::uint16_t kCode = 0x0205;

    std::uint16_t row = 0;
    std::uint16_t column = 0;
    std::uint16_t xf = 0;
    std::uint8_t value = 0;
    std::uint8_t isError = 0;

    static constexpr void Fields(auto& self, auto& body) {
        body(self.row, self.column, self.xf, self.value, self.isError);
    }
};

}  // namespace YExcel
