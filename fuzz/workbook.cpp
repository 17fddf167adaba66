// Makes a list of calls on a workbook: sheets, names, cells. A second reader must find in each sheet of the saved file
// the cells that were written.
#include <bit>
#include <cmath>
#include <variant>
#include <vector>

#include "fuzz/Fuzz.h"
#include "tests/export/WorkbookReader.h"
#include "vxfileio/export/Document.h"

namespace {

using workbook_reader::Content;
using workbook_reader::CReadSheet;
using workbook_reader::CReadWorkbook;
using workbook_reader::Place;

/// Returns the number as stored: numbers that look short keep 30 bits.
bool IsSame(const Content& wanted, const Content& found) {
    const auto* const number = std::get_if<double>(&wanted);
    if (number == nullptr || !std::holds_alternative<double>(found)) return wanted == found;
    const double other = std::get<double>(found);
    if (!std::isfinite(*number)) return std::bit_cast<std::uint64_t>(*number) == std::bit_cast<std::uint64_t>(other);
    return std::abs(other - *number) <= std::abs(*number) / (1 << 18) + 1e-300;
}

class CBothWorkbooks {
 public:
    CBothWorkbooks() { CreateSheets(1); }

    void Call(CCalls& calls) {
        switch (calls.Byte() % 8) {
            case 0:
                CreateSheets(calls.Byte() % 4);
                break;
            case 1:
                Add(calls.Text(), static_cast<std::int32_t>(calls.Signed(1)));
                break;
            case 2:
                Rename(calls.Byte(), calls.Text());
                break;
            default:
                SetCell(calls);
        }
    }

    void Check() {
        static const std::string path = CFuzzFolder::Path("book.xls");
        Require(m_document.SaveToFile(path), "the workbook can be saved");
        const CReadWorkbook read(CompoundReader(ReadBytes(path)).streams.at("Workbook"));
        Require(read.sheets.size() == m_sheets.size(), "the number of sheets");
        for (std::size_t i = 0; i < m_sheets.size(); ++i) {
            const CReadSheet& wanted = m_sheets[i];
            const CReadSheet& found = read.sheets[i];
            Require(found.name == wanted.name, "the name of a sheet");
            Require(found.rows == wanted.rows && found.columns == wanted.columns, "the size of a sheet");
            const auto isSame = [](const auto& a, const auto& b) {
                return a.first == b.first && IsSame(a.second, b.second);
            };
            Require(std::ranges::equal(wanted.cells, found.cells, isSame), "the cells of a sheet");
        }
    }

 private:
    bool IsThere(const std::string& name) const {
        return std::ranges::any_of(m_sheets, [&](const CReadSheet& sheet) { return sheet.name == name; });
    }

    void CreateSheets(int count) {
        m_document.CreateSheets(count);
        m_sheets.clear();
        for (int i = 1; i <= std::max(count, 1); ++i)
            m_sheets.push_back({.name = "Sheet" + std::to_string(i), .cells = {}});
    }

    void Add(const std::string& name, std::int32_t position) {
        Require((m_document.AddSheet(name, position) == nullptr) == IsThere(name), "a free name for a sheet");
        if (IsThere(name)) return;
        const bool isInside = position >= 0 && static_cast<std::size_t>(position) < m_sheets.size();
        m_sheets.insert(isInside ? m_sheets.begin() + position : m_sheets.end(), {.name = name, .cells = {}});
    }

    void Rename(std::size_t number, const std::string& name) {
        CReadSheet& sheet = m_sheets[number % m_sheets.size()];
        const bool isFree = !IsThere(name);
        Require(m_document.RenameSheet(sheet.name, name) == isFree, "a free name for a sheet");
        if (isFree) sheet.name = name;
    }

    void SetCell(CCalls& calls) {
        CReadSheet& sheet = m_sheets[calls.Byte() % m_sheets.size()];
        const std::uint8_t how = calls.Byte();
        const Place place(how < 254 ? calls.Byte() : calls.Number(2), calls.Byte() % 64);
        YExcel::Cell& cell = *m_document.FindSheet(sheet.name)->At(place.first, place.second);
        sheet.rows = std::max(sheet.rows, place.first + 1);
        sheet.columns = std::max(sheet.columns, place.second + 1);
        std::u16string text;
        if (how % 5 == 0) {
            sheet.cells[place] = std::bit_cast<double>(calls.Number(8));
            cell.SetDouble(std::get<double>(sheet.cells[place]));
        } else if (how % 5 == 1) {
            const auto number = static_cast<double>(calls.Signed(4)) / 100;
            cell.SetDouble(number);
            sheet.cells[place] = number;
        } else if (how % 5 == 2) {
            const auto number = static_cast<std::int32_t>(calls.Signed(4));
            cell.SetInteger(number);
            sheet.cells[place] =
                static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(number) << 2U) >> 2);
        } else if (how % 5 == 3) {
            const std::string narrow = Repeated(calls.Text(), calls.Byte());
            cell.SetText(narrow);
            for (const char c : narrow)
                text += static_cast<unsigned char>(c);
            Keep(sheet, place, text);
        } else {
            const std::string bytes = calls.Text();
            for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
                text += static_cast<char16_t>(U16(bytes, i));
            text = Repeated(text, calls.Byte());
            cell.SetWideText(text);
            Keep(sheet, place, text);
        }
    }

    template <class Text>
    static Text Repeated(const Text& text, int times) {
        Text all = text;
        while (times-- > 0)
            all += text;
        return all;
    }

    static void Keep(CReadSheet& sheet, const Place& place, const std::u16string& text) {
        const auto kept = text.substr(0, text.find(u'\0')).substr(0, 32767);
        sheet.cells.erase(place);
        if (!kept.empty()) sheet.cells[place] = kept;
    }

    YExcel::Document m_document;
    std::vector<CReadSheet> m_sheets;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostCalls = 40;
    CCalls calls(Input(data, size));
    CBothWorkbooks books;
    for (int i = 0; i < kMostCalls && !calls.AtEnd(); ++i)
        books.Call(calls);
    books.Check();
    return 0;
}
