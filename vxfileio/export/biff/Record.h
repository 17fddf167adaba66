#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

#include "vxfileio/export/biff/ContinuedBody.h"
#include "vxfileio/helpers/FieldVisitors.h"

/// @file
/// Records of a workbook stream: code, length of the body, and body. All numbers are little-endian.

namespace YExcel {

/// A plain value with a `kCode` and a list of fields, `Fields`. The defaults are the values of a new workbook.
template <class Type>
concept Record = requires(const Type& record, CFieldSize& size) {
    { Type::kCode } -> std::convertible_to<std::uint16_t>;
    Type::Fields(record, size);
};

/// Returns the bytes of the body, as if it were in one record.
template <Record Type>
constexpr std::size_t DataSize(const Type& record) {
    CFieldSize size;
    Type::Fields(record, size);
    return size.Size();
}

/// Returns the size of the record in a stream, including all headers and what its CONTINUE records add.
template <Record Type>
constexpr std::size_t RecordSize(const Type& record) {
    const std::size_t dataSize = DataSize(record);
    if (dataSize <= kMostBody) return kHeaderSize + dataSize;
    CRecordsSize size;
    CContinuedBody body(size, Type::kCode);
    Type::Fields(record, body);
    return size.Size();
}

}  // namespace YExcel
