#include "verify/workbook/Records.h"

#include <algorithm>
#include <array>

#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/SheetRecords.h"

using namespace YExcel;

namespace vxfile {

namespace {

struct CCodeName {
    std::uint16_t code;
    std::string_view name;
};

constexpr std::array kNames = {
    CCodeName{BOF::kCode, "BOF"},
    CCodeName{YEOF::kCode, "EOF"},
    CCodeName{Window1::kCode, "Window1"},
    CCodeName{Font::kCode, "Font"},
    CCodeName{XF::kCode, "XF"},
    CCodeName{Style::kCode, "Style"},
    CCodeName{BoundSheet::kCode, "BoundSheet"},
    CCodeName{SharedStringTable::kCode, "SST"},
    CCodeName{kContinue, "CONTINUE"},
    CCodeName{Index::kCode, "Index"},
    CCodeName{Dimensions::kCode, "Dimensions"},
    CCodeName{Row::kCode, "Row"},
    CCodeName{RK::kCode, "RK"},
    CCodeName{MulRK::kCode, "MulRK"},
    CCodeName{Number::kCode, "Number"},
    CCodeName{LabelSST::kCode, "LabelSST"},
    CCodeName{DBCell::kCode, "DBCell"},
    CCodeName{Window2::kCode, "Window2"},
};

}  // namespace

std::optional<CRecord> RecordAt(std::span<const std::byte> stream, std::size_t position) {
    vxfileio::helpers::CFieldLoad load(stream.subspan(std::min(position, stream.size())));
    std::uint16_t code = 0;
    std::uint16_t size = 0;
    load(code, size);
    if (!load.IsWhole() || load.Left() < size) return std::nullopt;
    return CRecord{position, code, stream.subspan(position + kHeaderSize, size)};
}

std::string RecordName(std::uint16_t code) {
    const auto* const found = std::ranges::find(kNames, code, &CCodeName::code);
    return found == kNames.end() ? "record " + std::to_string(code) : std::string(found->name);
}

void AppendUtf8(std::uint16_t unit, std::string& utf8) {
    if (unit < 0x80) {
        utf8 += static_cast<char>(unit);
    } else if (unit < 0x800) {
        utf8 += {static_cast<char>(0xC0U | unit >> 6U), static_cast<char>(0x80U | (unit & 0x3FU))};
    } else {
        utf8 += {static_cast<char>(0xE0U | unit >> 12U), static_cast<char>(0x80U | (unit >> 6U & 0x3FU)),
                 static_cast<char>(0x80U | (unit & 0x3FU))};
    }
}

std::vector<CSheetName> SheetsOf(std::span<const std::byte> stream) {
    std::vector<CSheetName> sheets;
    for (auto record = RecordAt(stream, 0); record && record->code != YEOF::kCode;
         record = RecordAt(stream, record->End())) {
        const auto add = [&](const BoundSheet& sheet) {
            if (!sheets.empty() && sheet.position <= sheets.back().position) return;
            if (!sheets.empty()) sheets.back().end = sheet.position;
            sheets.push_back({Utf8(sheet.name), sheet.position, stream.size()});
        };
        TakeAs<BoundSheet>(*record, add);
    }
    return sheets;
}

}  // namespace vxfile
