#include "vxfileio/rawdata/HeaderCodec.h"

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/rawdata/TableCodec.h"

namespace vxfileio::rawdata {

void RefuseUnlessFitting(const CCellWriter& writer, std::string_view key) {
    if (!writer.Fits()) throw CExcVXReader(kDoesNotFit + std::string(key));
}

std::string NeedText(std::string_view key, std::size_t room, std::size_t needed) {
    return std::string(key) + " has room for " + std::to_string(room) + " bytes, but needs " + std::to_string(needed);
}

std::string FittingText(std::size_t count, std::size_t fitting, std::string_view items) {
    const std::string name = ' ' + std::string(items);
    return " for " + std::to_string(count) + name + "; " + std::to_string(fitting) + " of these" + name + " would fit.";
}

void EncodeCell(std::string_view key, std::string_view value, std::span<char> cell) {
    CCellWriter writer(cell, key);
    writer.PutValue(value);
    RefuseUnlessFitting(writer, key);
}

void EncodeCell(std::string_view key, std::int64_t value, std::span<char> cell) {
    CCellWriter writer(cell, key);
    writer.PutItem(value);
    RefuseUnlessFitting(writer, key);
}

void EncodePosition(std::string_view key, std::int64_t position, std::span<char> cell) noexcept {
    CCellWriter(cell, key).PutItem(position);
}

}  // namespace vxfileio::rawdata
