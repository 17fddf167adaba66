// Writes the same cells with libxlsxwriter, whose workbooks are zipped XML.
// usage: workbook_xlsxwriter write FILE COLUMNS
#include <xlsxwriter.h>

#include <cstdlib>

#include "../Measure.h"
#include "../WorkbookCells.h"

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const auto columns = static_cast<std::uint32_t>(std::atoi(argv[3]));
    bool good = false;
    Measure([&] {
        lxw_workbook* const workbook = workbook_new(argv[2]);
        lxw_worksheet* const sheet = workbook_add_worksheet(workbook, "Sheet1");
        for (std::uint32_t row = 0; row < kRows; ++row) {
            for (std::uint32_t column = 0; column < columns; ++column)
                worksheet_write_number(sheet, row, static_cast<lxw_col_t>(column), CellOf(row, column), nullptr);
        }
        good = workbook_close(workbook) == LXW_NO_ERROR;
    });
    return good ? 0 : 1;
}
