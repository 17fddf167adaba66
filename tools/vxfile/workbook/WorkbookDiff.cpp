#include "tools/vxfile/workbook/WorkbookDiff.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/workbook/CompoundScan.h"
#include "tools/vxfile/workbook/Records.h"
#include "tools/vxfile/workbook/SharedStringsJudge.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RkNumber.h"

namespace vxfile {

namespace {

/// Returns the name that spreadsheet programs show, such as "Results!B3".
std::string CellName(const std::string& sheet, std::uint16_t row, std::uint32_t column) {
    std::string letters;
    for (std::uint32_t rest = column + 1; rest > 0; rest = (rest - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('A' + (rest - 1) % 26));
    return sheet + '!' + letters + std::to_string(row + 1);
}

/// The fewest digits that tell the number from all others.
std::string NumberText(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// What a record of cells says, cell by cell.
void AddCells(const CRecord& record, const std::string& sheet, const std::vector<std::string>& texts,
              std::vector<CLeaf>& leaves) {
    const auto add = [&](std::uint32_t column, std::string value) {
        leaves.push_back({CellName(sheet, record.U16(0), column), std::move(value)});
    };
    const std::uint16_t column = record.U16(2);
    if (record.code == YExcel::RK::kCode) {
        add(column, NumberText(YExcel::DecodeRK(record.U32(6))));
    } else if (record.code == YExcel::Number::kCode) {
        add(column, NumberText(std::bit_cast<double>(record.U32(6) | std::uint64_t{record.U32(10)} << 32U)));
    } else if (record.code == YExcel::LabelSST::kCode) {
        const std::uint32_t text = record.U32(6);
        add(column, text < texts.size() ? Quoted(texts[text]) : "a text that isn't there");
    } else if (record.code == YExcel::MulRK::kCode) {
        for (std::size_t at = 4, i = 0; at + 8 <= record.body.size(); at += 6, ++i)
            add(column + static_cast<std::uint32_t>(i), NumberText(YExcel::DecodeRK(record.U32(at + 2))));
    }
}

std::vector<CLeaf> CellsOf(const std::string& path) {
    const CCompoundScan scan(path);
    const std::vector<std::string> texts = SharedTextsOf(scan.Stream());
    std::vector<CLeaf> leaves;
    for (const auto& sheet : SheetsOf(scan.Stream())) {
        const std::string name = Readable(sheet.name);
        leaves.push_back({name, "sheet"});
        for (auto record = RecordAt(scan.Stream(), sheet.position);
             record && record->position < sheet.end && record->code != YExcel::YEOF::kCode;
             record = RecordAt(scan.Stream(), record->End()))
            AddCells(*record, name, texts, leaves);
    }
    return leaves;
}

}  // namespace

void CompareWorkbooks(const std::string& left, const std::string& right, CDifferences& differences) {
    CompareLeaves(CellsOf(left), CellsOf(right), differences);
}

}  // namespace vxfile
