#pragma once

// The cells of the minimal workbooks.

#include <limits>

#include "StraightWorkbook.h"

inline void PutLabel(U32 row, U32 column, U32 text) { Put(U16(0xFD), U16(10), U16(row), U16(column), U16(0), text); }

inline std::int32_t Cut(double value) {
    return value > -2147483648.0 && value < 2147483648.0 ? std::int32_t(value)
                                                         : std::numeric_limits<std::int32_t>::min();
}

inline bool IsShort(double value) { return U32(Cut(value * 100)) * 100 == U32(Cut(value * 10000)); }

inline U32 ShortForm(double value) {
    const bool hundredths = U32(Cut(value)) * 100 != U32(Cut(value * 100));
    const auto bits = std::bit_cast<std::uint64_t>(hundredths ? value * 100 : value);
    return (U32(bits >> 32) & ~3U) | U32(hundredths);
}

/// Stores neighbouring numbers; `get(column)` returns each.
template <class Get>
void PutNumbers(U32 row, U32 column, U32 end, Get get) {
    char* run = nullptr;  // the current record of short forms
    U32 first = 0;
    const auto close = [&] {
        if (run == nullptr) return;
        const U32 count = U32(g_at - run - 8) / 6;
        if (count == 1) {  // a single number has another record type, with the same fields
            const U16 code = 0x27E;
            std::memcpy(run, &code, 2);
        } else {
            Put(U16(first + count - 1));
        }
        const auto size = U16(g_at - run - 4);
        std::memcpy(run + 2, &size, 2);
        run = nullptr;
    };
    for (; column < end; ++column) {
        const double value = get(column);
        if (!IsShort(value)) {
            close();
            Put(U16(0x203), U16(14), U16(row), U16(column), U16(0), value);
            continue;
        }
        if (run == nullptr) {
            run = g_at;
            first = column;
            Put(U16(0xBD), U16(0), U16(row), U16(column));
        }
        Put(U16(0), ShortForm(value));
    }
    close();
}
