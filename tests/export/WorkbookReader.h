#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tests/export/compound/CompoundReader.h"

/// @file
/// A second reader of workbooks, written from the published format. It shares no code with the library.

namespace workbook_reader {

/// Throws the reason unless the condition holds.
inline void Require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

using Place = std::pair<std::uint32_t, std::uint32_t>;
using Content = std::variant<double, std::u16string>;

struct CReadSheet {
    std::string name;
    std::map<Place, Content> cells;
    std::uint32_t rows = 0;
    std::uint32_t columns = 0;
    bool hasWholeNumbers = false;  ///< Some number has the short form of whole numbers.
};

struct CRecord {
    std::size_t position;
    std::uint16_t code;
    std::string body;
};

inline constexpr std::size_t kMostBody = 8224;

inline std::vector<CRecord> RecordsOf(const std::string& stream) {
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

inline double NumberOf(std::uint32_t word) {
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

    std::vector<CReadSheet> sheets;

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
            PutShort(body, 0, U32(body, 6));
        } else if (record.code == 0x00BD) {
            for (std::uint32_t i = 0; 6 * i + 6 < body.size(); ++i)
                PutShort(body, i, U32(body, 6 * std::size_t{i} + 6));
        }
    }

    void PutShort(const std::string& body, std::uint32_t further, std::uint32_t word) {
        if ((word & 2U) != 0) sheets.at(m_sheet - 1).hasWholeNumbers = true;
        Put(body, further, NumberOf(word));
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

}  // namespace workbook_reader

/// The cells of a workbook as text, by sheet, row and column ("Results 2 0"). Numbers have up to 12 digits, and texts
/// one byte per character.
using WorkbookCells = std::map<std::string, std::string>;

/// The row count and column count of each sheet, as its DIMENSIONS record has them.
using WorkbookSizes = std::map<std::string, std::pair<std::uint32_t, std::uint32_t>>;

struct Workbook {
    WorkbookCells cells;
    WorkbookSizes sizes;
};

inline std::string ShownContent(const workbook_reader::Content& content) {
    char number[32] = "";
    if (const auto* const value = std::get_if<double>(&content)) std::snprintf(number, sizeof number, "%.12g", *value);
    std::string text = number;
    if (const auto* const units = std::get_if<std::u16string>(&content)) text.assign(units->begin(), units->end());
    return text;
}

/// Reads the workbook with these bytes. All its numbers must be doubles.
inline Workbook WorkbookOf(const std::string& file) {
    Workbook workbook;
    for (const auto& sheet : workbook_reader::CReadWorkbook(CompoundReader(file).streams.at("Workbook")).sheets) {
        workbook_reader::Require(!sheet.hasWholeNumbers, "all numbers are doubles");
        workbook.sizes[sheet.name] = {sheet.rows, sheet.columns};
        for (const auto& [place, content] : sheet.cells)
            workbook.cells[sheet.name + " " + std::to_string(place.first) + " " + std::to_string(place.second)] =
                ShownContent(content);
    }
    return workbook;
}
