#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "verify/Text.h"
#include "verify/workbook/Records.h"
#include "verify/workbook/SharedStringsJudge.h"
#include "verify/workbook/WorkbookVerify.h"
#include "vxfileio/export/RowBlock.h"
#include "vxfileio/export/WorkbookStream.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RecordStream.h"
#include "vxfileio/export/biff/RkNumber.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace vxfile {

namespace {

constexpr std::uint32_t kRowsPerBlock = YExcel::RowBlock::kRows;

/// What the cells of a sheet add up to. The records around them must agree.
struct CSheetSum {
    std::optional<std::uint32_t> firstRow = std::nullopt;
    std::uint32_t endRow = 0;
    std::uint16_t firstColumn = 0;
    std::uint16_t endColumn = 0;
    std::vector<std::uint32_t> dbCells = {};
};

/// One row of a block: its number, and the stream offset of its first cell.
struct CRowPlace {
    std::uint16_t row;
    std::size_t firstCell = 0;
};

/// The last run of adjacent numbers in the short form.
struct CShortRun {
    std::uint16_t row;
    std::uint32_t endColumn;
    bool isWhole;
};

bool IsWhole(std::uint32_t word) { return (word & YExcel::rk::kWhole) != 0; }

/// The place of a cell, or of the first cell of a run.
struct CCellPlace {
    std::uint16_t row = 0;
    std::uint16_t column = 0;
};

CCellPlace PlaceOf(const YExcel::MulRK& run) { return {run.row, run.firstColumn}; }
CCellPlace PlaceOf(const auto& cell) { return {cell.row, cell.column}; }

/// A sheet may end with rows and columns without cells. Accepts the size in `Dimensions` if it fits the blocks.
void Extend(CSheetSum& sum, const YExcel::Dimensions& dimensions) {
    const std::uint32_t rows = dimensions.endRow;
    const std::size_t blocks = (std::size_t{rows} + kRowsPerBlock - 1) / kRowsPerBlock;
    if (rows >= sum.endRow && blocks == sum.dbCells.size()) sum.endRow = rows;
    sum.endColumn = std::max(sum.endColumn, dimensions.endColumn);
    if (sum.dbCells.empty()) sum.dbCells.push_back(0);
}

class CRecordsJudge {
 public:
    CRecordsJudge(std::span<const std::byte> stream, CFindings& findings, const CReach& reach)
        : m_stream(stream), m_findings(findings), m_reach(reach) {}

    void Judge() {
        JudgeGlobals();
        const std::vector<CSheetName> sheets = SheetsOf(m_stream);
        for (std::size_t i = 0; i < sheets.size() && !m_lost; ++i) {
            m_place = "sheet " + std::to_string(i + 1) + " (" + Readable(sheets[i].name) + ")";
            JudgeSheet(sheets[i], i == 0);
            m_reach(static_cast<std::int64_t>(m_position), std::ssize(m_stream));
        }
        if (m_lost) return;
        m_place = "stream";
        if (m_position != m_stream.size())
            Add(m_position, Counted(m_stream.size() - m_position, "byte") + " after the last record", "none",
                "Readers ignore them.");
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
    void AddMisplaced(const CRecord& record, CCellPlace place, const CRowPlace* row, std::uint32_t nextColumn);
    std::uint16_t Judge(const CRecord& record, const YExcel::RK& cell);
    std::uint16_t Judge(const CRecord& record, const YExcel::MulRK& run);
    std::uint16_t Judge(const CRecord& record, const YExcel::Number& cell);
    std::uint16_t Judge(const CRecord& record, const YExcel::LabelSST& cell);
    void JudgeWords(const CRecord& record, CCellPlace place, const std::vector<std::uint32_t>& words);
    void JudgeDBCell(std::size_t firstRow, const std::vector<CRowPlace>& rows, CSheetSum& sum);

    std::span<const std::byte> m_stream;
    CFindings& m_findings;
    const CReach& m_reach;
    std::string m_place = "globals";
    std::size_t m_position = 0;
    bool m_lost = false;  ///< What should follow is unknown.
    std::uint32_t m_strings = 0;
    std::uint32_t m_uses = 0;
    std::uint32_t m_labels = 0;
    std::optional<CShortRun> m_run;
};

/// Moves past the next record if it has this code. Otherwise the rest can't be judged.
std::optional<CRecord> CRecordsJudge::Expect(std::uint16_t code) {
    if (m_lost) return std::nullopt;
    const auto record = Peek();
    if (record && record->code == code) {
        m_position = record->End();
        return record;
    }
    m_lost = true;
    Add(m_position, record ? RecordName(record->code) : "no whole record", RecordName(code),
        "The stream is damaged, or another program wrote it; what follows wasn't checked.");
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
        "A field is damaged, or another program wrote it; the sheet may look different.");
}

void CRecordsJudge::JudgeGlobals() {
    ExpectExactly(YExcel::BOF{.type = YExcel::BOF::kGlobals});
    ExpectExactly(YExcel::Window1());
    for (int i = 0; i < YExcel::kFonts; ++i)
        ExpectExactly(YExcel::Font());
    for (int i = 0; i < YExcel::kFormats; ++i)
        ExpectExactly(YExcel::XF());
    for (int i = 0; i < YExcel::kStyles; ++i)
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
        const auto compare = [&](const YExcel::BoundSheet& sheet) {
            Compare(record, YExcel::BoundSheet{.position = sheet.position, .name = sheet.name});
        };
        TakeAs<YExcel::BoundSheet>(record, compare);
    }
}

void CRecordsJudge::JudgeSheet(const CSheetName& sheet, bool isFirst) {
    if (sheet.position != m_position)
        Add(m_position, "a sheet that BoundSheet places at " + std::to_string(sheet.position),
            std::to_string(m_position), "Spreadsheet programs look for the sheet in the wrong place.");
    m_run.reset();
    ExpectExactly(YExcel::BOF{.type = YExcel::BOF::kSheet});
    const auto index = Expect(YExcel::Index::kCode);
    const auto dimensions = Expect(YExcel::Dimensions::kCode);
    if (m_lost) return;
    const auto size = dimensions->As<YExcel::Dimensions>();
    CSheetSum sum = JudgeBlocks(size.endColumn);
    if (m_lost) return;
    Extend(sum, size);
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
        const std::uint16_t row = record.As<YExcel::Row>().row;
        Compare(record, YExcel::Row{.row = row, .endCell = endColumn});
        if (row / kRowsPerBlock != number || (!rows.empty() && row <= rows.back().row))
            Add(record.position, "row " + std::to_string(row),
                "rows " + std::to_string(number * kRowsPerBlock) + " to " +
                    std::to_string(number * kRowsPerBlock + kRowsPerBlock - 1) + " in ascending order",
                "Spreadsheet programs may not find its cells.");
        rows.push_back({row});
    }
    return rows;
}

/// Cells are ordered by row and then from left to right. Each row has at least one.
void CRecordsJudge::JudgeCells(std::vector<CRowPlace>& rows, CSheetSum& sum) {
    auto row = rows.begin();
    std::uint32_t nextColumn = 0;
    const auto judge = [&](const CRecord& record, const auto& cell) {
        const CCellPlace place = PlaceOf(cell);
        if (row != rows.end() && row->firstCell != 0 && place.row != row->row) {
            ++row;
            nextColumn = 0;
        }
        if (row == rows.end() || place.row != row->row || place.column < nextColumn)
            return AddMisplaced(record, place, row == rows.end() ? nullptr : &*row, nextColumn);
        if (row->firstCell == 0) row->firstCell = record.position;
        if (!sum.firstRow && row == rows.begin() && nextColumn == 0) sum.firstColumn = place.column;
        nextColumn = Judge(record, cell) + 1U;
        sum.endColumn = std::max(sum.endColumn, static_cast<std::uint16_t>(nextColumn));
    };
    for (auto record = Peek(); record && !m_lost; record = Peek()) {
        if (!TakeCell(*record, [&](const auto& cell) { judge(*record, cell); })) break;
        m_position = record->End();
    }
    if (m_lost) return;
    const auto isEmpty = [](const CRowPlace& place) { return place.firstCell == 0; };
    if (const auto empty = std::ranges::find_if(rows, isEmpty); empty != rows.end())
        Add(m_position, "no cell of row " + std::to_string(empty->row), "at least one", "Cells are missing.");
}

void CRecordsJudge::AddMisplaced(const CRecord& record, CCellPlace place, const CRowPlace* row,
                                 std::uint32_t nextColumn) {
    m_lost = true;
    Add(record.position, "a cell in row " + std::to_string(place.row) + ", column " + std::to_string(place.column),
        row == nullptr ? "a cell of one of the rows above"
                       : "row " + std::to_string(row->row) + ", from column " + std::to_string(nextColumn),
        "Rows and cells contradict each other; what follows wasn't checked.");
}

// Each `Judge` returns the last column of the cell or run.

std::uint16_t CRecordsJudge::Judge(const CRecord& record, const YExcel::RK& cell) {
    Compare(record, YExcel::RK{.row = cell.row, .column = cell.column, .word = cell.word});
    JudgeWords(record, PlaceOf(cell), {cell.word});
    return cell.column;
}

std::uint16_t CRecordsJudge::Judge(const CRecord& record, const YExcel::MulRK& run) {
    std::vector<YExcel::MulRK::Item> items;
    std::vector<std::uint32_t> words;
    for (const auto& item : run.items) {
        items.push_back({.word = item.word});
        words.push_back(item.word);
    }
    const auto last = static_cast<std::uint16_t>(run.firstColumn + items.size() - 1);
    Compare(record, YExcel::MulRK{.row = run.row, .firstColumn = run.firstColumn, .items = items, .lastColumn = last});
    JudgeWords(record, PlaceOf(run), words);
    return std::max(last, run.firstColumn);
}

std::uint16_t CRecordsJudge::Judge(const CRecord& record, const YExcel::Number& cell) {
    Compare(record, YExcel::Number{.row = cell.row, .column = cell.column, .value = cell.value});
    if (YExcel::TwoDecimalTest(cell.value))
        Add(record.position, "a number with two decimals in the long form", "the short form, RK or MulRK",
            "The number is damaged, or another program wrote this; readers read it as it is.");
    return cell.column;
}

std::uint16_t CRecordsJudge::Judge(const CRecord& record, const YExcel::LabelSST& cell) {
    Compare(record, YExcel::LabelSST{.row = cell.row, .column = cell.column, .stringIndex = cell.stringIndex});
    ++m_labels;
    if (cell.stringIndex >= m_strings)
        Add(record.position, "text " + std::to_string(cell.stringIndex), "one of " + Counted(m_strings, "text"),
            "Spreadsheet programs show an empty cell, or refuse the file.");
    return cell.column;
}

/// Adjacent numbers in the short form share a record if they are of the same kind, doubles or whole numbers.
void CRecordsJudge::JudgeWords(const CRecord& record, CCellPlace place, const std::vector<std::uint32_t>& words) {
    if (words.empty()) return;
    const bool isWhole = IsWhole(words.front());
    const auto isOfTwo = [](std::uint32_t word) { return (word & YExcel::rk::kFlags) == YExcel::rk::kFlags; };
    if (std::ranges::any_of(words, isOfTwo))
        Add(record.position, "a number that is marked both as whole and as hundredths", "at most one mark",
            "A number is damaged; spreadsheet programs show a hundredth of it.");
    if (std::ranges::any_of(words, [&](std::uint32_t word) { return IsWhole(word) != isWhole; }))
        Add(record.position, "doubles and whole numbers in one record", "numbers of one kind",
            "A number is damaged, or another program wrote this; readers read it as it is.");
    if (m_run && m_run->row == place.row && m_run->endColumn == place.column && m_run->isWhole == isWhole)
        Add(record.position, "a record that continues the one before it", "one MulRK record for both",
            "A column is damaged, or another program wrote this; readers read it as it is.");
    m_run = CShortRun{place.row, static_cast<std::uint32_t>(place.column + words.size()), isWhole};
}

void CRecordsJudge::JudgeDBCell(std::size_t firstRow, const std::vector<CRowPlace>& rows, CSheetSum& sum) {
    const auto record = Expect(YExcel::DBCell::kCode);
    if (!record) return;
    std::vector<std::uint16_t> offsets;
    std::size_t from = firstRow + YExcel::RecordSize(YExcel::Row());
    for (const auto& row : rows) {
        offsets.push_back(static_cast<std::uint16_t>(row.firstCell - from));
        from = row.firstCell;
    }
    const std::size_t wayBack = rows.empty() ? 0 : record->position - firstRow;
    Compare(*record, YExcel::DBCell{.firstRowOffset = static_cast<std::uint32_t>(wayBack), .rowOffsets = offsets});
    sum.dbCells.push_back(static_cast<std::uint32_t>(record->position));
}

}  // namespace

void JudgeRecords(std::span<const std::byte> stream, CFindings& findings, const CReach& reach) {
    CRecordsJudge(stream, findings, reach).Judge();
}

}  // namespace vxfile
