// A workbook of doubles with nothing but the unavoidable: straight stores into one buffer, and one write.
// usage: workbook_limit write FILE COLUMNS
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "../Measure.h"
#include "../WorkbookCells.h"

namespace {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;

char* g_at = nullptr;

template <class... Values>
void Put(Values... values) {
    ((std::memcpy(g_at, &values, sizeof values), g_at += sizeof values), ...);
}

void PutZeros(std::size_t count) {
    std::memset(g_at, 0, count);
    g_at += count;
}

void PutGlobals() {
    Put(U16(0x809), U16(16), U16(0x600), U16(5), U16(0x19A0), U16(0x7CD), U32(0xC0C9), U32(0x306));
    Put(U16(0x3D), U16(18), U16(0x78), U16(0x78), U16(0x3B1F), U16(0x2454), U16(0x38), U16(0), U16(0), U16(1),
        U16(600));
    for (int i = 0; i < 4; ++i) {
        Put(U16(0x31), U16(26), U16(200), U16(0), U16(0x7FFF), U16(400), U32(0), U16(0), U8(5), U8(1));
        Put(U16('A'), U16('r'), U16('i'), U16('a'), U16('l'));
    }
    for (int i = 0; i < 21; ++i) {
        Put(U16(0xE0), U16(20), U16(0), U16(0), U16(0xFFF5), U16(0x20));
        PutZeros(10);
        Put(U16(0x20C0));
    }
    for (int i = 0; i < 6; ++i)
        Put(U16(0x293), U16(4), U16(0x8000), U16(0xFF00));
    Put(U16(0x85), U16(14), U32(748), U16(0), U8(6), U8(0), 'S', 'h', 'e', 'e', 't', '1');
    Put(U16(0xFC), U16(8), U32(0), U32(0), U16(0xA), U16(0));
}

void PutSheet(U32 columns, const char* stream) {
    const U32 blocks = (kRows + 31) / 32;
    Put(U16(0x809), U16(16), U16(0x600), U16(0x10), U16(0x19A0), U16(0x7CD), U32(0xC0C9), U32(0x306));
    Put(U16(0x20B), U16(16 + 4 * blocks), U32(0), U32(0), kRows, U32(0));
    char* index = g_at;
    g_at += 4 * blocks;
    Put(U16(0x200), U16(14), U32(0), kRows, U16(0), U16(columns), U16(0));
    for (U32 row = 0; row < kRows; row += 32) {
        const U32 count = row + 32 < kRows ? 32 : kRows - row;
        const char* const begin = g_at;
        for (U32 i = 0; i < count; ++i)
            Put(U16(0x208), U16(16), U16(row + i), U16(0), U16(columns), U16(0xFF), U32(0), U32(0));
        for (U32 i = 0; i < count; ++i) {
            for (U32 column = 0; column < columns; ++column)
                Put(U16(0x203), U16(14), U16(row + i), U16(column), U16(0), CellOf(row + i, column));
        }
        const auto position = U32(g_at - stream);
        std::memcpy(index, &position, 4);
        index += 4;
        Put(U16(0xD7), U16(4 + 2 * count), U32(g_at - begin), U16(20 * (count - 1)));
        for (U32 i = 1; i < count; ++i)
            Put(U16(18 * columns));
    }
    Put(U16(0x23E), U16(18), U16(0x6B6), U32(0), U16(0x40), U32(0), U32(0), U16(0), U16(0xA), U16(0));
}

// ---- The compound file: 128 sectors share a FAT sector that is the first of them; DIFAT sectors follow the FAT
// sectors
// ---- that they are needed for; the directory is sector 1; the stream fills the rest.

bool IsFat(U32 sector) { return sector % 128 == 0; }
bool IsDifat(U32 sector) { return sector % 128 == 1 && sector / 128 >= 109 && (sector / 128 - 109) % 127 == 0; }

std::vector<char> CompoundOf(const char* stream, U32 size) {
    std::vector<U32> fat;
    std::vector<char> file(512);
    U32 last = 0;
    for (U32 done = 0; done < size || fat.size() < 2;) {
        const auto sector = U32(fat.size());
        file.resize(file.size() + 512);
        if (IsFat(sector) || IsDifat(sector) || sector == 1) {
            fat.push_back(IsFat(sector) ? 0xFFFFFFFD : sector == 1 ? 0xFFFFFFFE : 0xFFFFFFFC);
            continue;
        }
        std::memcpy(&file[512 * (sector + 1)], stream + done, size - done < 512 ? size - done : 512);
        done += 512;
        if (last != 0) fat[last] = sector;
        last = sector;
        fat.push_back(0xFFFFFFFE);
    }
    const auto sectors = U32(fat.size());
    const U32 fats = (sectors + 127) / 128;
    const U32 difats = fats > 109 ? (fats - 109 + 126) / 127 : 0;
    fat.resize(128 * fats, 0xFFFFFFFF);
    for (U32 i = 0; i < fats; ++i)
        std::memcpy(&file[512 * (128 * i + 1)], &fat[128 * i], 512);
    g_at = file.data();
    Put(0xE11AB1A1E011CFD0U);
    PutZeros(16);
    Put(U16(0x3B), U16(3), U16(0xFFFE), U16(9), U16(6));
    PutZeros(10);
    Put(fats, U32(1), U32(0), U32(4096), U32(0xFFFFFFFE), U32(0), difats > 0 ? U32(128 * 109 + 1) : 0xFFFFFFFE, difats);
    for (U32 i = 0; i < 109; ++i)
        Put(i < fats ? 128 * i : 0xFFFFFFFF);
    for (U32 d = 0; d < difats; ++d) {
        const U32 first = 109 + 127 * d;
        g_at = &file[512 * (128 * first + 2)];
        for (U32 i = first; i < first + 127; ++i)
            Put(i < fats ? 128 * i : 0xFFFFFFFF);
        Put(d + 1 < difats ? 128 * (first + 127) + 1 : 0xFFFFFFFE);
    }
    g_at = &file[512 * 2];
    const auto name = [](const char* text) {
        char* const end = g_at + 64;
        const auto length = U16(2 * std::strlen(text) + 2);
        for (; *text != 0; ++text)
            Put(U16(*text));
        g_at = end;
        Put(length);
    };
    name("Root Entry");
    Put(U8(5), U8(1), ~U32(0), ~U32(0), U32(1));
    PutZeros(36);
    Put(U32(0xFFFFFFFE), U32(0), U32(0));
    name("Workbook");
    Put(U8(2), U8(1), ~U32(0), ~U32(0), ~U32(0));
    PutZeros(36);
    Put(U32(2), size, U32(0));
    return file;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const auto columns = static_cast<U32>(std::atoi(argv[3]));
    bool good = false;
    Measure([&] {
        std::vector<char> stream(1000 + kRows * (22 + 18 * std::size_t{columns}) + kRows);
        g_at = stream.data();
        PutGlobals();
        PutSheet(columns, stream.data());
        const std::vector<char> file = CompoundOf(stream.data(), U32(g_at - stream.data()));
        const int handle = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
        good = write(handle, file.data(), file.size()) == static_cast<ssize_t>(file.size());
        close(handle);
    });
    return good ? 0 : 1;
}
