#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

#include "vxfileio/export/biff/ContinuedBody.h"
#include "vxfileio/helpers/FieldVisitors.h"

/// @file
/// Records of a workbook stream: each is its code, the length of its body, and the body, all numbers little-endian.

namespace YExcel {

/// A plain value with a `kCode` and one list of fields, `Fields`. A new one has the values that a fresh workbook has.
template <class Type>
concept Record = requires(const Type& record, CFieldSize& size) {
    { Type::kCode } -> std::convertible_to<std::uint16_t>;
    Type::Fields(record, size);
};

/// Returns the bytes of the body, as if it stood in one record.
template <Record Type>
constexpr std::size_t DataSize(const Type& record) {
    CFieldSize size;
    Type::Fields(record, size);
    return size.Size();
}

/// Returns the bytes that the record takes in a stream, its own header and all that its CONTINUE records add included.
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
