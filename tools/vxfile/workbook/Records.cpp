#include "tools/vxfile/workbook/Records.h"

#include <algorithm>
#include <array>

#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/ContinuedBody.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/SheetRecords.h"
#include "vxfileio/helpers/LittleEndian.h"

using namespace YExcel;

namespace vxfile {

namespace {

template <class Number>
Number LoadAt(std::span<const std::byte> body, std::size_t offset) {
    if (offset + sizeof(Number) > body.size()) return 0;
    return vxfileio::helpers::LoadLittleEndian<Number>(&body[offset]);
}

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

std::uint8_t CRecord::U8(std::size_t offset) const { return LoadAt<std::uint8_t>(body, offset); }
std::uint16_t CRecord::U16(std::size_t offset) const { return LoadAt<std::uint16_t>(body, offset); }
std::uint32_t CRecord::U32(std::size_t offset) const { return LoadAt<std::uint32_t>(body, offset); }

std::optional<CRecord> RecordAt(std::span<const std::byte> stream, std::size_t position) {
    if (position > stream.size() || stream.size() - position < kHeaderSize) return std::nullopt;
    const auto code = LoadAt<std::uint16_t>(stream, position);
    const auto size = LoadAt<std::uint16_t>(stream, position + 2);
    if (stream.size() - position - kHeaderSize < size) return std::nullopt;
    return CRecord{position, code, stream.subspan(position + kHeaderSize, size)};
}

std::string RecordName(std::uint16_t code) {
    const auto* const found = std::ranges::find(kNames, code, &CCodeName::code);
    return found == kNames.end() ? "record " + std::to_string(code) : std::string(found->name);
}

std::vector<CSheetName> SheetsOf(std::span<const std::byte> stream) {
    constexpr std::size_t kName = 8;  // behind position, two bytes, count and option
    std::vector<CSheetName> sheets;
    for (auto record = RecordAt(stream, 0); record && record->code != YEOF::kCode;
         record = RecordAt(stream, record->End())) {
        if (record->code != BoundSheet::kCode || record->body.size() < kName) continue;
        const auto name = record->body.subspan(kName);
        const std::uint32_t position = record->U32(0);
        if (!sheets.empty() && position <= sheets.back().position) continue;
        if (!sheets.empty()) sheets.back().end = position;
        sheets.push_back({{reinterpret_cast<const char*>(name.data()), name.size()}, position, stream.size()});
    }
    return sheets;
}

}  // namespace vxfile
