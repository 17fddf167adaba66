#pragma once

// The compound file around the stream of a minimal workbook with 4,096 bytes or more. Each FAT sector is the first of
// the 128 sectors that it lists; DIFAT sectors follow the FAT sectors that require them; the directory is sector 1; the
// stream fills the rest. Everything is written from the caller's buffer by gathered writes.

#include <utility>

#include "StraightWorkbook.h"

inline bool IsFat(U32 sector) { return sector % 128 == 0; }
inline bool IsDifat(U32 sector) { return sector % 128 == 1 && sector / 128 >= 109 && (sector / 128 - 109) % 127 == 0; }

inline void PutEntry(const std::string& name, U8 type, U32 child, U32 start, U32 size) {
    for (U32 i = 0; i < 32; ++i)
        Put(U16(i < name.size() ? U8(name[i]) : 0));
    Put(U16(2 * name.size() + 2), type, U8(1), ~U32(0), ~U32(0), child);
    g_at = std::fill_n(g_at, 36, '\0');
    Put(start, size, U32(0));
}

/// Writes the file around a stream of `size` bytes, followed by zeros up to a whole sector.
inline bool WriteCompound(const char* path, char* stream, U32 size) {
    std::vector<U32> fat;
    std::vector<iovec> parts{{nullptr, 512}};
    std::vector<U32> ownSectors;  // sectors of the tables, by number
    U32 last = 0;
    char* next = stream;
    while (next < stream + size || fat.size() < 2) {
        const auto sector = U32(fat.size());
        if (IsFat(sector) || IsDifat(sector) || sector == 1) {
            fat.push_back(IsFat(sector) ? 0xFFFFFFFD : sector == 1 ? 0xFFFFFFFE : 0xFFFFFFFC);
            ownSectors.push_back(sector);
            parts.push_back({nullptr, 512});
            continue;
        }
        if (last != 0) fat[last] = sector;
        if (parts.back().iov_base == nullptr) parts.push_back({next, 0});
        parts.back().iov_len += 512;
        next += 512;
        last = sector;
        fat.push_back(0xFFFFFFFE);
    }
    const U32 fats = U32(fat.size() + 127) / 128;
    const U32 difats = fats > 109 ? (fats - 109 + 126) / 127 : 0;
    fat.resize(128 * fats, 0xFFFFFFFF);
    std::vector<char> own(512 * (1 + ownSectors.size()));
    g_at = own.data();
    Put(0xE11AB1A1E011CFD0U, U32(0), U32(0), U32(0), U32(0), U16(0x3B), U16(3), U16(0xFFFE), U16(9), U16(6), U16(0));
    Put(U32(0), U32(0), fats, U32(1), U32(0), U32(4096), U32(0xFFFFFFFE), U32(0));
    Put(difats > 0 ? U32(128 * 109 + 1) : 0xFFFFFFFE, difats);
    const auto putFats = [&](U32 first, U32 count) {
        for (U32 i = first; i < first + count; ++i)
            Put(i < fats ? 128 * i : 0xFFFFFFFF);
    };
    putFats(0, 109);
    for (const U32 sector : ownSectors) {
        char* const end = g_at + 512;
        if (IsFat(sector)) {
            std::memcpy(g_at, &fat[sector], 512);
        } else if (IsDifat(sector)) {
            const U32 first = sector / 128;
            putFats(first, 127);
            Put(first + 127 < fats ? 128 * (first + 127) + 1 : 0xFFFFFFFE);
        } else {
            PutEntry("Root Entry", 5, 1, 0xFFFFFFFE, 0);
            PutEntry("Workbook", 2, ~U32(0), 2, size);
        }
        g_at = end;
    }
    char* table = own.data();
    for (iovec& part : parts) {
        if (part.iov_base == nullptr) part.iov_base = std::exchange(table, table + 512);
    }
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    bool good = file >= 0;
    for (std::size_t i = 0; i < parts.size() && good; i += 1024) {
        const auto count = std::min<std::size_t>(parts.size() - i, 1024);
        ssize_t wanted = 0;
        for (std::size_t k = i; k < i + count; ++k)
            wanted += ssize_t(parts[k].iov_len);
        good = writev(file, &parts[i], int(count)) == wanted;
    }
    return close(file) == 0 && good;
}
