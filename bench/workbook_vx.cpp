// Writes a workbook of doubles with the export's document class; the same work as limits/workbook_limit.cpp.
// usage: workbook_vx write FILE COLUMNS
#include <cstdlib>

#include "Measure.h"
#include "WorkbookCells.h"
#include "vxfileio/export/Document.h"

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const auto columns = static_cast<std::uint32_t>(std::atoi(argv[3]));
    bool good = false;
    Measure([&] {
        YExcel::Document document;
        document.CreateSheets(1);
        YExcel::Sheet& sheet = *document.FindSheet("Sheet1");
        for (std::uint32_t row = 0; row < kRows; ++row) {
            for (std::uint32_t column = 0; column < columns; ++column)
                sheet.At(row, column)->SetDouble(CellOf(row, column));
        }
        good = document.SaveToFile(argv[2]);
    });
    return good ? 0 : 1;
}
