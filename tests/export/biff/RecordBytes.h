#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "vxfileio/export/biff/RecordStream.h"

/// @file
/// Builds the bytes of records by hand, number by number, without any library code.

inline std::string LowFirst(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xFFU);
    return bytes;
}
inline std::string U8(std::uint64_t value) { return LowFirst(value, 1); }
inline std::string U16(std::uint64_t value) { return LowFirst(value, 2); }
inline std::string U32(std::uint64_t value) { return LowFirst(value, 4); }
inline std::string U64(std::uint64_t value) { return LowFirst(value, 8); }

/// Returns the bytes of UTF-16 characters.
inline std::string Units(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text)
        bytes += U16(unit);
    return bytes;
}

inline std::string ToString(std::span<const std::byte> bytes) {
    std::string text;
    for (const std::byte byte : bytes)
        text += static_cast<char>(byte);
    return text;
}

/// Returns the bytes of a record alone in a stream.
std::string BytesOf(const YExcel::Record auto& record) { return ToString(YExcel::RecordBytes(record)); }

/// Expects a record to be stored as these bytes and to be loaded from them, and every shorter body to be refused. A
/// list at the end of a body may lack whole items: `shorterLists` is the number of such bodies.
template <YExcel::Record Type>
void ExpectRecord(const Type& record, const std::string& bytes, std::size_t shorterLists = 0) {
    EXPECT_EQ(BytesOf(record), bytes);
    std::size_t accepted = 0;
    for (std::size_t size = YExcel::kHeaderSize; size <= bytes.size(); ++size) {
        // A separate allocation, so that a sanitizer notices reads after the end.
        const std::vector<char> body(bytes.begin() + YExcel::kHeaderSize,
                                     bytes.begin() + static_cast<std::ptrdiff_t>(size));
        vxfileio::helpers::CFieldLoad load(std::as_bytes(std::span(body)));
        Type loaded;
        load(loaded);
        if (!load.TookAll()) continue;
        ++accepted;
        EXPECT_EQ(BytesOf(loaded).substr(YExcel::kHeaderSize), std::string(body.begin(), body.end()));
    }
    EXPECT_EQ(accepted, 1 + shorterLists) << "record " << Type::kCode;
}

/// Returns the bytes of a document's stream.
std::string StreamOf(const auto& document) {
    std::string bytes;
    document.Stream().GiveTo([&](auto piece) { bytes += ToString(piece); });
    return bytes;
}
