// Writes a workbook of doubles with minimal effort: direct stores into one buffer, and one write.
// usage: workbook_limit write FILE COLUMNS
#include <cstdlib>
#include <memory>

#include "../Measure.h"
#include "../WorkbookCells.h"
#include "StraightCells.h"
#include "StraightCompound.h"

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const auto columns = static_cast<U32>(std::atoi(argv[3]));
    bool good = false;
    Measure([&] {
        const std::size_t most = 2000 + kRows * (22 + 18 * std::size_t{columns}) + kRows;
        const auto stream = std::make_unique_for_overwrite<char[]>(most);
        g_at = stream.get();
        char* const position = PutGlobals({"Sheet1"}, 0, {}).front();
        PutSheet(stream.get(), position, true, 0, kRows, columns,
                 [&](U32 row) { PutNumbers(row, 0, columns, [&](U32 column) { return CellOf(row, column); }); });
        const auto size = U32(g_at - stream.get());
        std::memset(g_at, 0, 512);
        good = WriteCompound(argv[2], stream.get(), size);
    });
    return good ? 0 : 1;
}
