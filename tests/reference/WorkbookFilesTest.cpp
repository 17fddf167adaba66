#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "tests/reference/Twin.h"
#include "tests/support/TempFolder.h"
#include "vxfileio/export/Document.h"

// The reference workbooks and their text twins are made by make_workbooks.py, without the library. The tests fill a
// workbook with the cells of a twin and expect the same bytes.

namespace {

constexpr std::array kNames = {"big", "empty", "rows", "small", "texts"};

std::string WorkbookPath(const std::string& fileName) { return ReferencePath("workbooks/" + fileName); }

/// Returns the characters of a text, which has four hexadecimal digits per character in the twin; "006e*300," are 300,
/// and "-" is an empty text.
std::u16string Characters(const std::string& digits) {
    std::u16string text;
    for (std::size_t i = 0; i < digits.size() && digits != "-"; i += 4) {
        const auto character = static_cast<char16_t>(std::stoul(digits.substr(i, 4), nullptr, 16));
        const bool isRun = digits.substr(i + 4, 1) == "*";
        text.append(isRun ? std::stoul(digits.substr(i + 5)) : 1, character);
        if (isRun) i = digits.find(',', i) - 3;
    }
    return text;
}

/// Sets a text with one byte per character if all are below 256.
void SetText(YExcel::Cell& cell, const std::u16string& text) {
    std::string narrow;
    for (const char16_t character : text)
        narrow += static_cast<char>(character);
    const bool fits = std::all_of(text.begin(), text.end(), [](char16_t character) { return character < 256; });
    fits ? cell.SetText(narrow) : cell.SetWideText(text);
}

void SetValue(YExcel::Cell& cell, const std::string& type, const std::string& value) {
    if (type == "double") {
        cell.SetDouble(std::strtod(value.c_str(), nullptr));
    } else if (type == "integer") {
        cell.SetInteger(std::stoi(value));
    } else {
        ASSERT_EQ(type, "text");
        SetText(cell, Characters(value));
    }
}

/// Fills a document with the cells of a twin. A twin without cells means a workbook with one sheet.
void Fill(YExcel::Document& document, const std::string& twin) {
    if (twin.empty()) document.CreateSheets(1);
    std::istringstream lines(twin);
    for (std::string line; std::getline(lines, line);) {
        std::array<std::string, 5> fields;
        std::istringstream rest(line);
        for (std::string& field : fields)
            std::getline(rest, field, '\t');
        const auto& [name, row, column, type, value] = fields;
        YExcel::Sheet* const found = document.FindSheet(name);
        YExcel::Sheet* const sheet = found == nullptr ? document.AddSheet(name) : found;
        const auto number = [](const std::string& text) { return static_cast<std::uint32_t>(std::stoul(text)); };
        SetValue(*sheet->At(number(row), number(column)), type, value);
    }
}

/// Returns the first difference of two files, or an empty text. (Printing whole files would fill the screen.)
std::string Difference(const std::string& is, const std::string& expected) {
    if (is == expected) return "";
    const auto at = std::mismatch(is.begin(), is.end(), expected.begin(), expected.end()).first - is.begin();
    return "sizes " + std::to_string(is.size()) + " and " + std::to_string(expected.size()) + ", different at " +
           std::to_string(at);
}

class WorkbookFile : public testing::TestWithParam<const char*> {};

TEST_P(WorkbookFile, HasTheBytesComputedFromItsCells) {
    const std::string name = GetParam();
    const CTempFolder folder;
    const std::string path = folder.Path("written.xls");
    YExcel::Document document;
    Fill(document, ReadAll(WorkbookPath(name + ".txt")));
    ASSERT_TRUE(document.SaveToFile(path));
    EXPECT_EQ(Difference(ReadAll(path), ReadAll(WorkbookPath(name + ".xls"))), "");
}

INSTANTIATE_TEST_SUITE_P(Writing, WorkbookFile, testing::ValuesIn(kNames),
                         [](const auto& file) { return std::string(file.param); });

TEST(WorkbookFiles, AreAllTested) {
    std::set<std::string> present;
    for (const auto& entry : std::filesystem::directory_iterator(WorkbookPath(""))) {
        if (entry.path().extension() == ".xls") present.insert(entry.path().stem().string());
    }
    EXPECT_EQ(present, std::set<std::string>(kNames.begin(), kNames.end()));
}

}  // namespace
