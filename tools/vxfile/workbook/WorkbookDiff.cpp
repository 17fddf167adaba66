#include "tools/vxfile/workbook/WorkbookDiff.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "verify/workbook/CompoundScan.h"
#include "verify/workbook/Records.h"
#include "verify/workbook/SharedStringsJudge.h"
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

/// Returns the fewest digits that identify the number.
std::string NumberText(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// Adds the cells of records to a list of leaves.
struct CCellLeaves {
    const std::string& sheet;
    const std::vector<std::string>& texts;
    std::vector<CLeaf>& leaves;

    void Add(std::uint16_t row, std::uint32_t column, std::string value) {
        leaves.push_back({CellName(sheet, row, column), std::move(value)});
    }
    void operator()(const YExcel::RK& cell) { Add(cell.row, cell.column, NumberText(YExcel::DecodeRK(cell.word))); }
    void operator()(const YExcel::Number& cell) { Add(cell.row, cell.column, NumberText(cell.value)); }
    void operator()(const YExcel::LabelSST& cell) {
        const bool exists = cell.stringIndex < texts.size();
        Add(cell.row, cell.column, exists ? Quoted(texts[cell.stringIndex]) : "a missing text");
    }
    void operator()(const YExcel::MulRK& run) {
        std::uint32_t column = run.firstColumn;
        for (const auto& item : run.items)
            Add(run.row, column++, NumberText(YExcel::DecodeRK(item.word)));
    }
};

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
            TakeCell(*record, CCellLeaves{name, texts, leaves});
    }
    return leaves;
}

}  // namespace

void CompareWorkbooks(const std::string& left, const std::string& right, CDifferences& differences) {
    CompareLeaves(CellsOf(left), CellsOf(right), differences);
}

}  // namespace vxfile
