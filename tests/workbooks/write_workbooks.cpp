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

// Writes workbooks of every kind to the given folder: NAME.xls, and next to it NAME.txt with its cells, one line per
// cell with sheet, row, column, type and value, separated by tabs. check_workbooks.py compares them with what other
// programs read.

namespace {

/// A workbook under construction, and the list of its cells.
class CWorkbook {
 public:
    CWorkbook() { m_document.CreateSheets(1); }

    void AddSheet(const std::string& name) {
        m_document.AddSheet(name);
        m_sheet = name;
    }
    void Double(std::uint32_t row, std::uint32_t column, double value) {
        At(row, column).SetDouble(value);
        char text[64];
        std::snprintf(text, sizeof text, "%.17g", value);
        Tell(row, column, "double", text);
    }
    void Integer(std::uint32_t row, std::uint32_t column, std::int32_t value) {
        At(row, column).SetInteger(value);
        Tell(row, column, "integer", std::to_string(value));
    }
    void Text(std::uint32_t row, std::uint32_t column, const std::string& text) {
        At(row, column).SetText(text);
        std::u16string units;
        for (const char c : text)
            units += static_cast<unsigned char>(c);
        Tell(row, column, "text", Hex(units));
    }
    void Wide(std::uint32_t row, std::uint32_t column, const std::u16string& text) {
        At(row, column).SetWideText(text);
        Tell(row, column, "text", Hex(text));
    }

    std::size_t StreamSize() const { return m_document.Stream().Size(); }

    void Save(const std::filesystem::path& folder, const std::string& name) {
        std::ofstream(folder / (name + ".txt"), std::ios::binary) << m_cells;
        if (!m_document.SaveToFile((folder / (name + ".xls")).string()))
            throw std::runtime_error("cannot write " + name);
    }

 private:
    YExcel::Cell& At(std::uint32_t row, std::uint32_t column) {
        return *m_document.FindSheet(m_sheet)->At(row, column);
    }

    void Tell(std::uint32_t row, std::uint32_t column, const char* type, const std::string& value) {
        m_cells +=
            m_sheet + '\t' + std::to_string(row) + '\t' + std::to_string(column) + '\t' + type + '\t' + value + '\n';
    }

    /// Returns four hexadecimal digits per character.
    static std::string Hex(const std::u16string& text) {
        std::string digits;
        for (const char16_t unit : text) {
            char four[8];
            std::snprintf(four, sizeof four, "%04x", static_cast<unsigned>(unit));
            digits += four;
        }
        return digits;
    }

    YExcel::Document m_document;
    std::string m_sheet = "Sheet1";
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

/// Texts that end before, at and after the end of a record, narrow and wide, and one that spans several records.
void WriteTexts(const std::filesystem::path& folder) {
    CWorkbook bytes;
    for (unsigned byte = 0x20; byte <= 0xFF; ++byte) {
        bytes.Text(byte, 0, std::string(1, static_cast<char>(byte)));
        bytes.Text(byte, 1, "a" + std::string(3, static_cast<char>(byte)) + "z");
    }
    bytes.Wide(0, 0, u"\u20AC \u03BC \u4E2D");
    bytes.Save(folder, "bytes");

    constexpr std::size_t kFirstText = 8224 - 8;  // the room in a record after the counts
    for (const std::size_t size : {kFirstText - 4, kFirstText - 3, kFirstText - 2}) {
        CWorkbook workbook;
        workbook.Text(0, 0, std::string(size, 'n'));
        workbook.Text(1, 0, "behind");
        workbook.Wide(2, 0, std::u16string(5000, u'\u03B1'));
        workbook.Text(3, 0, std::string(32'767, 'm'));
        workbook.Text(4, 0, "last");
        workbook.Save(folder, "continue_" + std::to_string(size));
    }
    CWorkbook many;
    for (std::uint32_t row = 0; row < 3000; ++row) {
        const std::size_t length = row * 7919 % 61 + 1;
        many.Text(row, 0, std::to_string(row) + std::string(length, static_cast<char>('a' + row % 26)));
        many.Wide(row, 1, std::u16string(length, static_cast<char16_t>(0x3B1 + row % 24)) + u'#');
    }
    many.Save(folder, "many_texts");
}

void WriteNumbers(const std::filesystem::path& folder) {
    CWorkbook numbers;
    std::uint32_t row = 0;
    for (const double value : {0.0,     1.0,     -1.0,     0.5,      12.5,         12.34,       1234.56,  12.34005,
                               5242.88, 5242.89, -5242.89, 214748.0, 214749.0,     123456789.0, 153.2738, 1e-5,
                               -1e300,  5e-324,  0.01,     99.99,    2147483647.0, 0.1,         1e15})
        numbers.Double(row++, 0, value);
    for (const std::int32_t value : {0, 1, -1, 100, 536870911, -536870912})
        numbers.Integer(row++, 0, value);
    for (std::uint32_t column = 0; column < 256; ++column) {
        numbers.Double(row, column, column * 0.25);
        numbers.Integer(row + 1, column, static_cast<std::int32_t>(column));
        if (column % 3 != 0) numbers.Double(row + 2, column, column / 7.0);
    }
    numbers.AddSheet("Second");
    numbers.Text(70, 255, "far");
    numbers.AddSheet("Third \xB5");
    numbers.Save(folder, "numbers");

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
        WriteTexts(folder);
        WriteNumbers(folder);
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
    }
    return 1;
}
