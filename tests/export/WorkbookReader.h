#pragma once

#include <bit>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/export/compound/CompoundReader.h"

/// The cells of a workbook as text, by sheet, row and column ("Results 2 0"). Numbers have up to 12 digits. Reads only
/// small workbooks, whose texts fit into one record.
using WorkbookCells = std::map<std::string, std::string>;

namespace workbook_reader {

inline std::string NumberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.12g", number);
    return text;
}

inline double DecimalOf(std::uint32_t word) {
    if ((word & 2U) != 0) throw std::runtime_error("no whole numbers expected");
    const auto number = std::bit_cast<double>(std::uint64_t{word & ~3U} << 32U);
    return (word & 1U) != 0 ? number / 100 : number;
}

inline std::vector<std::string> TextsOf(const std::string& body) {
    std::vector<std::string> texts;
    for (std::size_t at = 8; at < body.size();) {
        texts.push_back(body.substr(at + 3, U16(body, at)));
        at += 3 + texts.back().size();
    }
    if (texts.size() != U32(body, 4)) throw std::runtime_error("number of texts");
    return texts;
}

}  // namespace workbook_reader

/// The row count and column count of each sheet, as its DIMENSIONS record has them.
using WorkbookSizes = std::map<std::string, std::pair<std::uint32_t, std::uint32_t>>;

struct Workbook {
    WorkbookCells cells;
    WorkbookSizes sizes;
};

/// Reads the workbook with these bytes.
inline Workbook WorkbookOf(const std::string& file) {
    using namespace workbook_reader;
    const std::string stream = CompoundReader(file).streams.at("Workbook");
    std::map<std::size_t, std::string> names;  // by the offset of the sheet
    std::vector<std::string> texts;
    std::string sheet;
    Workbook workbook;
    for (std::size_t at = 0; at < stream.size(); at += 4 + U16(stream, at + 2)) {
        const std::string body = stream.substr(at + 4, U16(stream, at + 2));
        const auto put = [&](std::size_t column, const std::string& text) {
            workbook.cells[sheet + " " + std::to_string(U16(body, 0)) + " " + std::to_string(column)] = text;
        };
        switch (U16(stream, at)) {
            case 0x0085:
                names[U32(body, 0)] = body.substr(8, static_cast<unsigned char>(body[6]));
                break;
            case 0x00FC:
                texts = TextsOf(body);
                break;
            case 0x0809:
                sheet = at == 0 ? "" : names.at(at);
                break;
            case 0x027E:
                put(U16(body, 2), NumberText(DecimalOf(U32(body, 6))));
                break;
            case 0x0203:
                put(U16(body, 2), NumberText(std::bit_cast<double>(NumberAt(body, 6, 8))));
                break;
            case 0x00FD:
                put(U16(body, 2), texts.at(U32(body, 6)));
                break;
            case 0x00BD:
                for (std::size_t i = 0; 6 * i + 6 < body.size(); ++i)
                    put(U16(body, 2) + i, NumberText(DecimalOf(U32(body, 6 * i + 6))));
                break;
            case 0x0200:
                workbook.sizes[sheet] = {U32(body, 4), U16(body, 10)};
                break;
            default:
                break;
        }
    }
    return workbook;
}
