// Makes a list of calls on a workbook: sheets, names, cells. A second reader must find in each sheet of the saved file
// the cells that were written.
#include <bit>
#include <cmath>
#include <map>
#include <variant>
#include <vector>

#include "fuzz/Fuzz.h"
#include "tests/export/compound/CompoundReader.h"
#include "vxfileio/export/Document.h"

namespace {

using Place = std::pair<std::uint32_t, std::uint32_t>;
using Content = std::variant<double, std::u16string>;

struct CSheetModel {
    std::string name;
    std::map<Place, Content> cells;
    std::uint32_t rows = 0;
    std::uint32_t columns = 0;
};

struct CRecord {
    std::size_t position;
    std::uint16_t code;
    std::string body;
};

constexpr std::size_t kMostBody = 8224;

std::vector<CRecord> RecordsOf(const std::string& stream) {
    std::vector<CRecord> records;
    for (std::size_t at = 0; at < stream.size(); at += 4 + records.back().body.size()) {
        records.push_back({at, U16(stream, at), stream.substr(at + 4, U16(stream, at + 2))});
        Require(records.back().body.size() == U16(stream, at + 2), "whole records");
        Require(records.back().body.size() <= kMostBody, "records of a size that readers accept");
    }
    return records;
}

/// The table of texts: a record, and those that continue it. Where the characters of a text continue in the next
/// record, that record begins with their width again; nothing else is split.
class CTextTable {
 public:
    explicit CTextTable(std::vector<std::string> bodies) : m_bodies(std::move(bodies)) {
        const std::uint32_t count = U32(Take(8), 4);
        while (m_texts.size() < count)
            m_texts.push_back(TakeText());
        Require(m_body + 1 == m_bodies.size() && m_at == m_bodies.back().size(), "nothing after the texts");
    }

    const std::u16string& At(std::size_t index) const { return m_texts.at(index); }

 private:
    std::string Take(std::size_t size) {
        if (m_at == m_bodies.at(m_body).size()) {
            ++m_body;
            m_at = 0;
        }
        const std::string taken = m_bodies.at(m_body).substr(m_at, size);
        Require(taken.size() == size, "numbers aren't cut");
        m_at += size;
        return taken;
    }

    std::u16string TakeText() {
        std::u16string text;
        const std::string header = Take(3);
        bool isWide = header[2] != 0;
        while (text.size() < U16(header, 0)) {
            if (m_at == m_bodies.at(m_body).size()) isWide = Take(1)[0] != 0;
            const std::string character = Take(isWide ? 2 : 1);
            text += static_cast<char16_t>(NumberAt(character, 0, character.size()));
        }
        return text;
    }

    std::vector<std::string> m_bodies;
    std::size_t m_body = 0;
    std::size_t m_at = 0;
    std::vector<std::u16string> m_texts;
};

double NumberOf(std::uint32_t word) {
    const double number = (word & 2U) != 0 ? static_cast<std::int32_t>(word) >> 2
                                           : std::bit_cast<double>(std::uint64_t{word & ~3U} << 32U);
    return (word & 1U) != 0 ? number / 100 : number;
}

/// The content of a workbook's stream, sheet by sheet.
class CReadWorkbook {
 public:
    explicit CReadWorkbook(const std::string& stream) : m_records(RecordsOf(stream)), m_texts(TextBodies()) {
        for (const CRecord& record : m_records)
            Take(record);
    }

    std::vector<CSheetModel> sheets;

 private:
    std::vector<std::string> TextBodies() const {
        std::vector<std::string> bodies;
        for (const CRecord& record : m_records)
            if (record.code == 0x00FC || record.code == 0x003C) bodies.push_back(record.body);
        return bodies;
    }

    void Take(const CRecord& record) {
        const std::string& body = record.body;
        if (record.code == 0x0085) {
            m_positions.push_back(U32(body, 0));
            sheets.push_back({.name = body.substr(8, static_cast<unsigned char>(body.at(6))), .cells = {}});
        } else if (record.code == 0x0809 && record.position > 0) {
            Require(record.position == m_positions.at(m_sheet++), "a sheet where its name says");
        } else if (record.code == 0x020B) {
            CheckIndex(body);
        } else if (record.code == 0x0200) {
            sheets.at(m_sheet - 1).rows = U32(body, 4);
            sheets.at(m_sheet - 1).columns = U16(body, 10);
        } else if (record.code == 0x0203) {
            Put(body, 0, std::bit_cast<double>(NumberAt(body, 6, 8)));
        } else if (record.code == 0x00FD) {
            Put(body, 0, m_texts.At(U32(body, 6)));
        } else if (record.code == 0x027E) {
            Put(body, 0, NumberOf(U32(body, 6)));
        } else if (record.code == 0x00BD) {
            for (std::uint32_t i = 0; 6 * i + 6 < body.size(); ++i)
                Put(body, i, NumberOf(U32(body, 6 * std::size_t{i} + 6)));
        }
    }

    void Put(const std::string& body, std::uint32_t further, Content content) {
        const Place place(U16(body, 0), U16(body, 2) + further);
        Require(sheets.at(m_sheet - 1).cells.emplace(place, std::move(content)).second, "each cell once");
    }

    /// Checks that the index of a sheet points to the end of each block of rows.
    void CheckIndex(const std::string& body) const {
        if (U32(body, 8) == 0) return;  // no rows
        for (std::size_t at = 16; at < body.size(); at += 4) {
            const auto end = std::ranges::lower_bound(m_records, U32(body, at), {}, &CRecord::position);
            Require(end != m_records.end() && end->position == U32(body, at) && end->code == 0x00D7, "a block's end");
        }
    }

    std::vector<CRecord> m_records;
    CTextTable m_texts;
    std::vector<std::size_t> m_positions;
    std::size_t m_sheet = 0;
};

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
            const CSheetModel& wanted = m_sheets[i];
            const CSheetModel& found = read.sheets[i];
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
        return std::ranges::any_of(m_sheets, [&](const CSheetModel& sheet) { return sheet.name == name; });
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
        CSheetModel& sheet = m_sheets[number % m_sheets.size()];
        const bool isFree = !IsThere(name);
        Require(m_document.RenameSheet(sheet.name, name) == isFree, "a free name for a sheet");
        if (isFree) sheet.name = name;
    }

    void SetCell(CCalls& calls) {
        CSheetModel& sheet = m_sheets[calls.Byte() % m_sheets.size()];
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

    static void Keep(CSheetModel& sheet, const Place& place, const std::u16string& text) {
        const auto kept = text.substr(0, text.find(u'\0')).substr(0, 32767);
        sheet.cells.erase(place);
        if (!kept.empty()) sheet.cells[place] = kept;
    }

    YExcel::Document m_document;
    std::vector<CSheetModel> m_sheets;
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
