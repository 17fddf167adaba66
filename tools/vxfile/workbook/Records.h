#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vxfile {

/// One record of a workbook's stream.
struct CRecord {
    std::size_t position = 0;  ///< Of its code, from the start of the stream.
    std::uint16_t code = 0;
    std::span<const std::byte> body = {};  ///< It points into the stream.

    std::size_t End() const { return position + 4 + body.size(); }
    /// Numbers of the body, 0 behind its end.
    std::uint8_t U8(std::size_t offset) const;
    std::uint16_t U16(std::size_t offset) const;
    std::uint32_t U32(std::size_t offset) const;
};

/// Returns the record at the position; nothing at the end of the stream, or if it isn't whole.
std::optional<CRecord> RecordAt(std::span<const std::byte> stream, std::size_t position);

/// Returns what the format calls a record, such as "BoundSheet", or its number.
std::string RecordName(std::uint16_t code);

/// A sheet as the front of the stream names it.
struct CSheetName {
    std::string name;
    std::uint32_t position = 0;  ///< Where its records begin.
    std::size_t end = 0;         ///< Where those of the next sheet do, or the stream ends.
};

/// Returns the sheets that the records in front name. One that doesn't stand behind the sheet before it is left out, so
/// that all sheets together are no longer than the stream.
std::vector<CSheetName> SheetsOf(std::span<const std::byte> stream);

}  // namespace vxfile
