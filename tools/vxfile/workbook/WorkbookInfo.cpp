#include "tools/vxfile/workbook/WorkbookInfo.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "verify/workbook/CompoundScan.h"
#include "verify/workbook/Records.h"
#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/SheetRecords.h"

namespace vxfile {

namespace {

/// The size of a sheet, and the number of its cells.
struct CSheetSum {
    std::uint64_t rows = 0;
    std::uint64_t columns = 0;
    std::uint64_t numbers = 0;
    std::uint64_t texts = 0;
};

/// Counts cells.
struct CCellCount {
    CSheetSum& sum;

    void operator()(const YExcel::LabelSST& /*cell*/) { ++sum.texts; }
    void operator()(const YExcel::MulRK& run) { sum.numbers += run.items.size(); }
    void operator()(const auto& /*number*/) { ++sum.numbers; }
};

CSheetSum Sum(std::span<const std::byte> stream, const CSheetName& sheet) {
    CSheetSum sum;
    for (auto record = RecordAt(stream, sheet.position);
         record && record->position < sheet.end && record->code != YExcel::YEOF::kCode;
         record = RecordAt(stream, record->End())) {
        TakeCell(*record, CCellCount{sum});
        if (record->code != YExcel::Dimensions::kCode) continue;
        const auto dimensions = record->As<YExcel::Dimensions>();
        sum.rows = dimensions.endRow;
        sum.columns = dimensions.endColumn;
    }
    return sum;
}

}  // namespace

CPage InfoOfWorkbook(const std::string& path) {
    const CCompoundScan scan(path);
    const std::vector<CSheetName> sheets = SheetsOf(scan.Stream());
    std::vector<CPage::CRow> table = {{"Sheet", "Rows", "Columns", "Numbers", "Texts"}};
    CJson list = CJson::array();
    for (const auto& sheet : sheets) {
        const CSheetSum sum = Sum(scan.Stream(), sheet);
        const std::string name = Readable(sheet.name);
        table.push_back({name, std::to_string(sum.rows), std::to_string(sum.columns), std::to_string(sum.numbers),
                         std::to_string(sum.texts)});
        list.push_back({{"name", name},
                        {"rows", sum.rows},
                        {"columns", sum.columns},
                        {"numbers", sum.numbers},
                        {"texts", sum.texts}});
    }
    CPage page;
    page.Add("Stream", "streamSize", SizeText(static_cast<std::int64_t>(scan.Stream().size())), scan.Stream().size());
    page.Add("Sheets", "sheetCount", std::to_string(sheets.size()), sheets.size());
    page.SetTable(std::move(table));
    page.Json()["sheets"] = std::move(list);
    return page;
}

}  // namespace vxfile
