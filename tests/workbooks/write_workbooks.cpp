#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <stdexcept>
#include <string>

#include "vxfileio/export/Document.h"

// Writes workbooks of many sizes to the given folder: NAME.xls, and next to it NAME.txt with its cells, one line per
// cell with sheet, row, column, type and value, separated by tabs. check_workbooks.py compares them with what other
// programs read. (The reference workbooks have cells of every kind.)

namespace {

/// A workbook under construction, and the list of its cells.
class CWorkbook {
 public:
    CWorkbook() { m_document.CreateSheets(1); }

    void Double(std::uint32_t row, std::uint32_t column, double value) {
        At(row, column).SetDouble(value);
        char text[64];
        std::snprintf(text, sizeof text, "%.17g", value);
        Tell(row, column, "double", text);
    }
    void Text(std::uint32_t row, std::uint32_t column, const std::string& text) {
        At(row, column).SetText(text);
        std::string digits;
        for (const char c : text) {
            char four[8];
            std::snprintf(four, sizeof four, "%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            digits += four;
        }
        Tell(row, column, "text", digits);
    }

    std::size_t StreamSize() const { return m_document.Stream().Size(); }

    void Save(const std::filesystem::path& folder, const std::string& name) {
        std::ofstream(folder / (name + ".txt"), std::ios::binary) << m_cells;
        if (!m_document.SaveToFile((folder / (name + ".xls")).string()))
            throw std::runtime_error("cannot write " + name);
    }

 private:
    YExcel::Cell& At(std::uint32_t row, std::uint32_t column) {
        return *m_document.FindSheet("Sheet1")->At(row, column);
    }

    void Tell(std::uint32_t row, std::uint32_t column, const char* type, const std::string& value) {
        m_cells += "Sheet1\t" + std::to_string(row) + '\t' + std::to_string(column) + '\t' + type + '\t' + value + '\n';
    }

    YExcel::Document m_document;
    std::string m_cells;
};

/// Fills a workbook so that its stream has an exact size: with numbers, and a text, whose record grows byte by byte.
void FillTo(CWorkbook& workbook, std::size_t size) {
    constexpr std::size_t kRoomForText = 1000;
    constexpr std::size_t kBytesPerCell = 22;  // the maximum for a number
    workbook.Text(0, 1, "x");
    std::uint32_t cell = 0;
    for (std::size_t now = workbook.StreamSize(); now + kRoomForText < size; now = workbook.StreamSize()) {
        for (std::size_t more = (size - now - kRoomForText) / kBytesPerCell + 1; more > 0; --more, ++cell)
            workbook.Double(cell / 100, 3 + cell % 100, 1.0 / 3 + cell);
    }
    const std::size_t missing = size - workbook.StreamSize();
    workbook.Text(0, 2, "y");
    const std::size_t taken = workbook.StreamSize() + missing - size;
    if (taken > missing) throw std::runtime_error("no room for the text");
    workbook.Text(0, 2, std::string(1 + missing - taken, 'y'));
    if (workbook.StreamSize() != size) throw std::runtime_error("the stream has another size than was wanted");
}

void WriteSizes(const std::filesystem::path& folder) {
    CWorkbook().Save(folder, "empty");
    CWorkbook one;
    one.Double(0, 0, 1.0);
    one.Save(folder, "one_cell");
    // The last short stream, the first long one, and the sizes around the end of the first and second FAT sector.
    for (const std::size_t size : std::initializer_list<std::size_t>{4095, 4096, 4097, 62'976, 63'488, 64'000, 64'513,
                                                                     129'024, 130'000, 7'200'000}) {
        CWorkbook workbook;
        FillTo(workbook, size);
        workbook.Save(folder, "stream_" + std::to_string(size));
    }
}

void WriteAllRows(const std::filesystem::path& folder) {
    CWorkbook rows;
    for (std::uint32_t i = 0; i < 65'536; ++i)
        rows.Double(i, 0, i / 8.0);
    rows.Text(65'535, 255, "corner");
    rows.Save(folder, "all_rows");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: write_workbooks FOLDER\n";
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        WriteSizes(folder);
        WriteAllRows(folder);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
