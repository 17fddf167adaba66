#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/workbook/Records.h"
#include "tools/vxfile/workbook/SharedStringsJudge.h"
#include "tools/vxfile/workbook/WorkbookVerify.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RecordStream.h"
#include "vxfileio/export/biff/RkNumber.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace vxfile {

namespace {

constexpr int kFonts = 4;
constexpr int kFormats = 21;
constexpr int kStyles = 6;
constexpr std::uint32_t kRowsPerBlock = 32;

/// What a sheet's cells turned out to be; the records around them must say the same.
struct CSheetSum {
    std::optional<std::uint32_t> firstRow = std::nullopt;
    std::uint32_t endRow = 0;
    std::uint16_t firstColumn = 0;
    std::uint16_t endColumn = 0;
    std::vector<std::uint32_t> dbCells = {};
};

/// One row of a block: its number, and where its first cell stands.
struct CRowPlace {
    std::uint16_t row;
    std::size_t firstCell = 0;
};

/// Numbers in the short form that stand side by side, as far as they were seen.
struct CShortRun {
    std::uint16_t row;
    std::uint32_t endColumn;
    bool isWhole;
};

bool IsWhole(std::uint32_t word) { return (word & YExcel::rk::kWhole) != 0; }

bool IsCell(std::uint16_t code) {
    return code == YExcel::RK::kCode || code == YExcel::MulRK::kCode || code == YExcel::Number::kCode ||
           code == YExcel::LabelSST::kCode;
}

/// A sheet may end in rows and columns whose cells stay empty: it is as large as it says, if its blocks agree.
void Extend(CSheetSum& sum, const CRecord& dimensions) {
    const std::uint32_t rows = dimensions.U32(4);
    const std::size_t blocks = (std::size_t{rows} + kRowsPerBlock - 1) / kRowsPerBlock;
    if (rows >= sum.endRow && blocks == sum.dbCells.size()) sum.endRow = rows;
    sum.endColumn = std::max(sum.endColumn, dimensions.U16(10));
    if (sum.dbCells.empty()) sum.dbCells.push_back(0);
}

class CRecordsJudge {
 public:
    CRecordsJudge(std::span<const std::byte> stream, CFindings& findings) : m_stream(stream), m_findings(findings) {}

    void Judge() {
        JudgeGlobals();
        const std::vector<CSheetName> sheets = SheetsOf(m_stream);
        for (std::size_t i = 0; i < sheets.size() && !m_lost; ++i) {
            m_place = "sheet " + std::to_string(i + 1) + " (" + Readable(sheets[i].name) + ")";
            JudgeSheet(sheets[i], i == 0);
        }
        if (m_lost) return;
        m_place = "stream";
        if (m_position != m_stream.size())
            Add(m_position, Counted(m_stream.size() - m_position, "byte") + " behind the last record", "none",
                "Readers pass over them.");
        if (m_uses != m_labels)
            Add(0, "SST claims " + Counted(m_uses, "cell") + " with a text", std::to_string(m_labels),
                "The count is damaged, or cells are missing.");
    }

 private:
    void Add(std::size_t offset, std::string found, std::string expected, std::string meaning) {
        m_findings.Add({m_place + " > byte " + std::to_string(offset) + " of the stream", -1, std::move(found),
                        std::move(expected), std::move(meaning)});
    }

    std::optional<CRecord> Peek() const { return RecordAt(m_stream, m_position); }
    bool IsNext(std::uint16_t code) const {
        const auto record = Peek();
        return record && record->code == code;
    }

    std::optional<CRecord> Expect(std::uint16_t code);
    template <class Type>
    void ExpectExactly(const Type& record);
    template <class Type>
    void Compare(const CRecord& found, const Type& expected);

    void JudgeGlobals();
    void JudgeBoundSheets();
    void JudgeSheet(const CSheetName& sheet, bool isFirst);
    CSheetSum JudgeBlocks(std::uint16_t endColumn);
    void JudgeBlock(std::uint32_t number, std::uint16_t endColumn, CSheetSum& sum);
    std::vector<CRowPlace> JudgeRows(std::uint32_t number, std::uint16_t endColumn);
    void JudgeCells(std::vector<CRowPlace>& rows, CSheetSum& sum);
    std::uint16_t JudgeCell(const CRecord& cell);
    std::uint16_t JudgeRun(const CRecord& cell);
    void JudgeWords(const CRecord& cell, const std::vector<std::uint32_t>& words);
    void JudgeNumber(const CRecord& cell);
    void JudgeDBCell(std::size_t firstRow, const std::vector<CRowPlace>& rows, CSheetSum& sum);

    std::span<const std::byte> m_stream;
    CFindings& m_findings;
    std::string m_place = "globals";
    std::size_t m_position = 0;
    bool m_lost = false;  ///< Nobody knows what should follow.
    std::uint32_t m_strings = 0;
    std::uint32_t m_uses = 0;
    std::uint32_t m_labels = 0;
    std::optional<CShortRun> m_run;
};

/// Goes over the record that should come next. If another one comes, the rest can't be judged.
std::optional<CRecord> CRecordsJudge::Expect(std::uint16_t code) {
    if (m_lost) return std::nullopt;
    const auto record = Peek();
    if (record && record->code == code) {
        m_position = record->End();
        return record;
    }
    m_lost = true;
    Add(m_position, record ? RecordName(record->code) : "no whole record", RecordName(code),
        "The stream is damaged or of another program; what follows wasn't checked.");
    return std::nullopt;
}

template <class Type>
void CRecordsJudge::ExpectExactly(const Type& record) {
    if (const auto found = Expect(Type::kCode)) Compare(*found, record);
}

template <class Type>
void CRecordsJudge::Compare(const CRecord& found, const Type& expected) {
    const auto bytes = YExcel::RecordBytes(expected);
    const auto body = std::span(bytes).subspan(YExcel::kHeaderSize);
    if (std::ranges::equal(found.body, body)) return;
    const auto differs = static_cast<std::size_t>(std::ranges::mismatch(found.body, body).in1 - found.body.begin());
    const auto text = [&](std::span<const std::byte> part) {
        const auto rest = part.subspan(std::min(differs, part.size()));
        return Quoted({reinterpret_cast<const char*>(rest.data()), std::min<std::size_t>(rest.size(), 8)});
    };
    Add(found.position + YExcel::kHeaderSize + differs,
        text(found.body) + " from byte " + std::to_string(differs) + " of " + RecordName(Type::kCode), text(body),
        "A field is damaged or of another program; it may be shown in another way.");
}

void CRecordsJudge::JudgeGlobals() {
    ExpectExactly(YExcel::BOF{.type = YExcel::BOF::kGlobals});
    ExpectExactly(YExcel::Window1());
    for (int i = 0; i < kFonts; ++i)
        ExpectExactly(YExcel::Font());
    for (int i = 0; i < kFormats; ++i)
        ExpectExactly(YExcel::XF());
    for (int i = 0; i < kStyles; ++i)
        ExpectExactly(YExcel::Style());
    JudgeBoundSheets();
    if (const auto table = Expect(YExcel::SharedStringTable::kCode))
        m_position = JudgeSharedStrings(m_stream, table->position, m_strings, m_uses, m_findings);
    ExpectExactly(YExcel::YEOF());
}

void CRecordsJudge::JudgeBoundSheets() {
    if (!IsNext(YExcel::BoundSheet::kCode)) Expect(YExcel::BoundSheet::kCode);
    while (!m_lost && IsNext(YExcel::BoundSheet::kCode)) {
        const CRecord record = *Expect(YExcel::BoundSheet::kCode);
        constexpr std::size_t kName = 8;
        const auto name = record.body.subspan(std::min(kName, record.body.size()));
        const std::string_view text(reinterpret_cast<const char*>(name.data()), name.size());
        Compare(record, YExcel::BoundSheet{.position = record.U32(0), .name = YExcel::SmallString(text)});
    }
}

void CRecordsJudge::JudgeSheet(const CSheetName& sheet, bool isFirst) {
    if (sheet.position != m_position)
        Add(m_position, "a sheet that BoundSheet places at " + std::to_string(sheet.position),
            std::to_string(m_position), "Spreadsheet programs look for the sheet in the wrong place.");
    ExpectExactly(YExcel::BOF{.type = YExcel::BOF::kSheet});
    const auto index = Expect(YExcel::Index::kCode);
    const auto dimensions = Expect(YExcel::Dimensions::kCode);
    if (m_lost) return;
    CSheetSum sum = JudgeBlocks(dimensions->U16(10));
    if (m_lost) return;
    Extend(sum, *dimensions);
    Compare(*index, YExcel::Index{.firstUsedRow = sum.firstRow.value_or(0),
                                  .firstUnusedRow = sum.endRow,
                                  .dbCellPositions = sum.dbCells});
    Compare(*dimensions, YExcel::Dimensions{.firstUsedRow = sum.firstRow.value_or(0),
                                            .endRow = sum.endRow,
                                            .firstUsedColumn = sum.firstColumn,
                                            .endColumn = sum.endColumn});
    YExcel::Window2 window;
    if (!isFirst) window.options &= static_cast<std::uint16_t>(~YExcel::Window2::kSelected);
    ExpectExactly(window);
    ExpectExactly(YExcel::YEOF());
}

CSheetSum CRecordsJudge::JudgeBlocks(std::uint16_t endColumn) {
    CSheetSum sum;
    for (std::uint32_t number = 0; !m_lost && !IsNext(YExcel::Window2::kCode); ++number)
        JudgeBlock(number, endColumn, sum);
    return sum;
}

void CRecordsJudge::JudgeBlock(std::uint32_t number, std::uint16_t endColumn, CSheetSum& sum) {
    const std::size_t firstRow = m_position;
    std::vector<CRowPlace> rows = JudgeRows(number, endColumn);
    JudgeCells(rows, sum);
    JudgeDBCell(firstRow, rows, sum);
    if (rows.empty()) return;
    if (!sum.firstRow) sum.firstRow = rows.front().row;
    sum.endRow = rows.back().row + 1U;
}

std::vector<CRowPlace> CRecordsJudge::JudgeRows(std::uint32_t number, std::uint16_t endColumn) {
    std::vector<CRowPlace> rows;
    while (!m_lost && IsNext(YExcel::Row::kCode)) {
        const CRecord record = *Expect(YExcel::Row::kCode);
        const std::uint16_t row = record.U16(0);
        Compare(record, YExcel::Row{.row = row, .endCell = endColumn});
        if (row / kRowsPerBlock != number || (!rows.empty() && row <= rows.back().row))
            Add(record.position, "row " + std::to_string(row),
                "rows " + std::to_string(number * kRowsPerBlock) + " to " +
                    std::to_string(number * kRowsPerBlock + kRowsPerBlock - 1) + " in rising order",
                "Spreadsheet programs may not find its cells.");
        rows.push_back({row});
    }
    return rows;
}

/// The cells come row by row, each row having some, and from left to right.
void CRecordsJudge::JudgeCells(std::vector<CRowPlace>& rows, CSheetSum& sum) {
    auto row = rows.begin();
    std::uint32_t nextColumn = 0;
    for (auto cell = Peek(); cell && IsCell(cell->code); cell = Peek()) {
        m_position = cell->End();
        const std::uint16_t column = cell->U16(2);
        if (row != rows.end() && row->firstCell != 0 && cell->U16(0) != row->row) {
            ++row;
            nextColumn = 0;
        }
        if (row == rows.end() || cell->U16(0) != row->row || column < nextColumn) {
            Add(cell->position, "a cell in row " + std::to_string(cell->U16(0)) + ", column " + std::to_string(column),
                row == rows.end() ? "a cell of a row that is told above"
                                  : "row " + std::to_string(row->row) + ", from column " + std::to_string(nextColumn),
                "Rows and cells don't agree; what follows in this sheet wasn't checked.");
            m_lost = true;
            return;
        }
        if (row->firstCell == 0) row->firstCell = cell->position;
        if (!sum.firstRow && row == rows.begin() && nextColumn == 0) sum.firstColumn = column;
        nextColumn = JudgeCell(*cell) + 1U;
        sum.endColumn = std::max(sum.endColumn, static_cast<std::uint16_t>(nextColumn));
    }
    const auto isEmpty = [](const CRowPlace& place) { return place.firstCell == 0; };
    if (const auto empty = std::ranges::find_if(rows, isEmpty); empty != rows.end())
        Add(m_position, "no cell of row " + std::to_string(empty->row), "at least one", "Cells are missing.");
}

/// Returns the last column of the cell or cells.
std::uint16_t CRecordsJudge::JudgeCell(const CRecord& cell) {
    const std::uint16_t row = cell.U16(0);
    const std::uint16_t column = cell.U16(2);
    if (cell.code == YExcel::MulRK::kCode) return JudgeRun(cell);
    if (cell.code == YExcel::RK::kCode) {
        Compare(cell, YExcel::RK{.row = row, .column = column, .word = cell.U32(6)});
        JudgeWords(cell, {cell.U32(6)});
    } else if (cell.code == YExcel::LabelSST::kCode) {
        Compare(cell, YExcel::LabelSST{.row = row, .column = column, .stringIndex = cell.U32(6)});
        ++m_labels;
        if (cell.U32(6) >= m_strings)
            Add(cell.position, "text " + std::to_string(cell.U32(6)), "one of " + Counted(m_strings, "text"),
                "The cell shows nothing, or the file is refused.");
    } else {
        JudgeNumber(cell);
    }
    return column;
}

std::uint16_t CRecordsJudge::JudgeRun(const CRecord& cell) {
    const std::uint16_t column = cell.U16(2);
    std::vector<YExcel::MulRK::Item> items;
    std::vector<std::uint32_t> words;
    for (std::size_t at = 4; at + 8 <= cell.body.size(); at += 6) {
        words.push_back(cell.U32(at + 2));
        items.push_back({0, words.back()});
    }
    const auto last = static_cast<std::uint16_t>(column + items.size() - 1);
    Compare(cell, YExcel::MulRK{.row = cell.U16(0), .firstColumn = column, .items = items, .lastColumn = last});
    JudgeWords(cell, words);
    return std::max(last, column);
}

/// Numbers in the short form side by side share a record if they are of one kind, doubles or whole numbers.
void CRecordsJudge::JudgeWords(const CRecord& cell, const std::vector<std::uint32_t>& words) {
    if (words.empty()) return;
    const std::uint16_t row = cell.U16(0);
    const std::uint16_t column = cell.U16(2);
    const bool isWhole = IsWhole(words.front());
    const auto isOfTwo = [](std::uint32_t word) { return (word & YExcel::rk::kFlags) == YExcel::rk::kFlags; };
    if (std::ranges::any_of(words, isOfTwo))
        Add(cell.position, "a number that is marked as whole and as hundredths", "one mark or none",
            "A number is damaged; spreadsheet programs show its hundredth part.");
    if (std::ranges::any_of(words, [&](std::uint32_t word) { return IsWhole(word) != isWhole; }))
        Add(cell.position, "doubles and whole numbers in one record", "numbers of one kind",
            "A number is damaged, or another program wrote this; readers take it as it is.");
    if (m_run && m_run->row == row && m_run->endColumn == column && m_run->isWhole == isWhole)
        Add(cell.position, "a record that goes on where the one before ends", "one MulRK record of both",
            "A column is damaged, or another program wrote this; readers take it as it is.");
    m_run = CShortRun{row, static_cast<std::uint32_t>(column + words.size()), isWhole};
}

void CRecordsJudge::JudgeNumber(const CRecord& cell) {
    const auto value = std::bit_cast<double>(cell.U32(6) | std::uint64_t{cell.U32(10)} << 32U);
    Compare(cell, YExcel::Number{.row = cell.U16(0), .column = cell.U16(2), .value = value});
    if (YExcel::TwoDecimalTest(value))
        Add(cell.position, "a number of two decimals in full", "its short form, RK or MulRK",
            "The number is damaged, or another program wrote this; readers take it as it is.");
}

void CRecordsJudge::JudgeDBCell(std::size_t firstRow, const std::vector<CRowPlace>& rows, CSheetSum& sum) {
    const auto record = Expect(YExcel::DBCell::kCode);
    if (!record) return;
    constexpr std::size_t kRowSize = 20;
    std::vector<std::uint16_t> offsets;
    std::size_t from = firstRow + kRowSize;
    for (const auto& row : rows) {
        offsets.push_back(static_cast<std::uint16_t>(row.firstCell - from));
        from = row.firstCell;
    }
    const std::size_t wayBack = rows.empty() ? 0 : record->position - firstRow;
    Compare(*record, YExcel::DBCell{.firstRowOffset = static_cast<std::uint32_t>(wayBack), .rowOffsets = offsets});
    sum.dbCells.push_back(static_cast<std::uint32_t>(record->position));
}

}  // namespace

void JudgeRecords(std::span<const std::byte> stream, CFindings& findings) { CRecordsJudge(stream, findings).Judge(); }

}  // namespace vxfile
