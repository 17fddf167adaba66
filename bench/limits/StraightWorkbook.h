#pragma once

// Writes minimal workbooks: stores records directly into one buffer, and writes the compound file from it with one
// gathered write. The caller provides a buffer that is large enough.

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;

inline char* g_at = nullptr;

template <class... Values>
void Put(Values... values) {
    ((std::memcpy(g_at, &values, sizeof values), g_at += sizeof values), ...);
}

inline void PutText(const std::string& text) { g_at = std::copy(text.begin(), text.end(), g_at); }

/// Stores the records before the sheets. Returns where to store the positions of the sheets.
inline std::vector<char*> PutGlobals(const std::vector<std::string>& sheets, U32 texts,
                                     const std::vector<std::string>& strings) {
    Put(U16(0x809), U16(16), U16(0x600), U16(5), U16(0x19A0), U16(0x7CD), U32(0xC0C9), U32(0x306));
    Put(U16(0x3D), U16(18), U16(120), U16(120), U16(15135), U16(9300), U16(0x38), U32(0), U16(1), U16(600));
    for (int i = 0; i < 4; ++i) {
        Put(U16(0x31), U16(26), U16(200), U16(0), U16(0x7FFF), U16(400), U32(0), U16(0), U8(5), U8(1));
        Put(U16('A'), U16('r'), U16('i'), U16('a'), U16('l'));
    }
    for (int i = 0; i < 21; ++i)
        Put(U16(0xE0), U16(20), U32(0), U16(0xFFF5), U16(0x20), U16(0), U32(0), U32(0), U16(0x20C0));
    for (int i = 0; i < 6; ++i)
        Put(U16(0x293), U16(4), U16(0x8000), U16(0xFF00));
    std::vector<char*> positions;
    for (const std::string& name : sheets) {
        Put(U16(0x85), U16(8 + name.size()));
        positions.push_back(g_at);
        Put(U32(0), U16(0), U8(name.size()), U8(0));
        PutText(name);
    }
    std::size_t size = 8;
    for (const std::string& text : strings)
        size += 3 + text.size();
    Put(U16(0xFC), U16(size), texts, U32(strings.size()));
    for (const std::string& text : strings) {
        Put(U16(text.size()), U8(0));
        PutText(text);
    }
    Put(U16(0xA), U16(0));
    return positions;
}

/// Stores a sheet in which all rows from `firstRow` on have cells; `putRow(row)` stores the cells of a row.
template <class PutRow>
void PutSheet(const char* stream, char* position, bool isFirst, U32 firstRow, U32 rows, U32 columns, PutRow putRow) {
    const U32 blocks = (rows + 31) / 32;
    const auto begin = U32(g_at - stream);
    std::memcpy(position, &begin, 4);
    Put(U16(0x809), U16(16), U16(0x600), U16(0x10), U16(0x19A0), U16(0x7CD), U32(0xC0C9), U32(0x306));
    Put(U16(0x20B), U16(16 + 4 * blocks), U32(0), firstRow, rows, U32(0));
    char* index = g_at;
    g_at += 4 * blocks;
    Put(U16(0x200), U16(14), firstRow, rows, U16(0), U16(columns), U16(0));
    for (U32 row = firstRow; row < rows;) {
        const U32 end = std::min(rows, (row / 32 + 1) * 32);
        const char* const block = g_at;
        const char* last = g_at + 20;
        for (U32 i = row; i < end; ++i)
            Put(U16(0x208), U16(16), U16(i), U16(0), U16(columns), U16(0xFF), U32(0), U32(0));
        std::array<U16, 32> offsets;
        U32 count = 0;
        for (; row < end; ++row) {
            offsets[count++] = U16(g_at - last);
            last = g_at;
            putRow(row);
        }
        const auto dbCell = U32(g_at - stream);
        std::memcpy(index, &dbCell, 4);
        index += 4;
        Put(U16(0xD7), U16(4 + 2 * count), U32(g_at - block));
        std::memcpy(g_at, offsets.data(), 2 * count);
        g_at += 2 * count;
    }
    Put(U16(0x23E), U16(18), U16(isFirst ? 0x6B6 : 0x4B6), U32(0), U16(0x40), U32(0), U32(0), U16(0), U16(0xA), U16(0));
}
