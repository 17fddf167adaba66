#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "vxfileio/export/biff/CellRecords.h"
#include "vxfileio/export/biff/CountedString.h"
#include "vxfileio/export/biff/Record.h"

namespace vxfile {

/// One record of a workbook's stream.
struct CRecord {
    std::size_t position = 0;  ///< Of its code, from the start of the stream.
    std::uint16_t code = 0;
    std::span<const std::byte> body = {};  ///< Points into the stream.

    std::size_t End() const { return position + YExcel::kHeaderSize + body.size(); }

    /// Returns the record as a `Type` without text or lists. Fields after the end of the body keep their defaults.
    template <YExcel::Record Type>
    Type As() const {
        Type record;
        vxfileio::helpers::CFieldLoad load(body);
        load(record);
        return record;
    }
};

/// Calls `take` with the record as a `Type`, valid during the call. Returns false if it is another record.
template <YExcel::Record Type>
bool TakeAs(const CRecord& record, auto& take) {
    if (record.code != Type::kCode) return false;
    Type loaded;
    vxfileio::helpers::CFieldLoad load(record.body);
    load(loaded);
    take(loaded);
    return true;
}

/// Calls `take` with the cell or the run of cells: an `RK`, `MulRK`, `Number` or `LabelSST`, valid during the call.
/// Returns false if the record is none of these.
bool TakeCell(const CRecord& record, auto take) {
    return TakeAs<YExcel::RK>(record, take) || TakeAs<YExcel::MulRK>(record, take) ||
           TakeAs<YExcel::Number>(record, take) || TakeAs<YExcel::LabelSST>(record, take);
}

/// Returns the record at the position, or nothing at the end of the stream or if the record isn't whole.
std::optional<CRecord> RecordAt(std::span<const std::byte> stream, std::size_t position);

/// Returns the format's name of a record, such as "BoundSheet", or its number.
std::string RecordName(std::uint16_t code);

/// Appends a 16-bit unit to UTF-8 text.
void AppendUtf8(std::uint16_t unit, std::string& utf8);

/// Returns the characters of a counted string as UTF-8; narrow ones are Latin-1.
template <class Length>
std::string Utf8(const YExcel::CCountedString<Length>& text) {
    std::string utf8;
    const auto append = [&](auto characters) {
        using Unit = std::conditional_t<sizeof(characters[0]) == 1, std::uint8_t, std::uint16_t>;
        for (const auto c : characters)
            AppendUtf8(static_cast<Unit>(c), utf8);
    };
    std::visit(append, text.Text());
    return utf8;
}

/// A sheet as the globals name it.
struct CSheetName {
    std::string name;            ///< As UTF-8.
    std::uint32_t position = 0;  ///< Of its first record.
    std::size_t end = 0;         ///< Of the next sheet's first record, or of the stream's end.
};

/// Returns the sheets that the globals name. Skips a sheet that doesn't begin after the one before it, so that all
/// sheets together are no longer than the stream.
std::vector<CSheetName> SheetsOf(std::span<const std::byte> stream);

}  // namespace vxfile
