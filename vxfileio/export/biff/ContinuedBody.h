#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

#include "vxfileio/export/biff/CountedString.h"
#include "vxfileio/helpers/FieldVisitors.h"
#include "vxfileio/helpers/LittleEndian.h"

/// @file
/// Bodies that exceed the maximum length of a record continue in CONTINUE records.

namespace YExcel {

using vxfileio::helpers::CFieldSize;
using vxfileio::helpers::CFieldVisitor;

/// The maximum length of a record's body, without its header.
inline constexpr std::size_t kMostBody = 8224;
/// The size of the code and the length before every body.
inline constexpr std::size_t kHeaderSize = 4;
inline constexpr std::uint16_t kContinue = 0x003C;

/// Splits the fields of a body into a record and as many CONTINUE records as necessary. Calls `Begin(code)` of
/// `Records` for each record, then `Bytes` for its body.
///
/// Numbers and bytes are split wherever a record is full. A counted string is split between two characters, and its
/// option byte is repeated before the remaining ones. If it doesn't fit and the room is small, the whole string moves
/// to the next record.
template <class Records>
class CContinuedBody : public CFieldVisitor<CContinuedBody<Records>> {
 public:
    CContinuedBody(Records& records, std::uint16_t code) : m_records(records) { m_records.Begin(code); }

    void Number(std::unsigned_integral auto value) {
        std::array<std::byte, sizeof(value)> bytes{};
        vxfileio::helpers::StoreLittleEndian(bytes.data(), value);
        Bytes(bytes);
    }

    void Bytes(std::span<const std::byte> bytes) {
        while (!bytes.empty()) {
            if (m_room == 0) Continue();
            const auto part = bytes.first(std::min(bytes.size(), m_room));
            m_records.Bytes(part);
            m_room -= part.size();
            bytes = bytes.subspan(part.size());
        }
    }

    void Text(const SstString& string) {
        CFieldSize size;
        size(string);
        if (size.Size() > m_room && m_room < kLeastRoomForPart) Continue();
        (*this)(string.Count(), string.Option());
        std::visit([&](auto characters) { Characters(string.Option(), characters); }, string.Text());
    }

 private:
    /// If less room than this is left, a string that doesn't fit moves to the next record.
    static constexpr std::size_t kLeastRoomForPart = 12;

    void Continue() {
        m_records.Begin(kContinue);
        m_room = kMostBody;
    }

    void Characters(std::uint8_t option, auto rest) {
        while (true) {
            const std::size_t fitting = std::min(rest.size(), m_room / sizeof(rest.front()));
            (*this)(rest.substr(0, fitting));
            rest.remove_prefix(fitting);
            if (rest.empty()) return;
            Continue();
            (*this)(option);
        }
    }

    Records& m_records;
    std::size_t m_room = kMostBody;  ///< Bytes left in the current record.
};

/// Adds up the sizes of records, including headers.
class CRecordsSize {
 public:
    void Begin(std::uint16_t /*code*/) { m_size += kHeaderSize; }
    void Bytes(std::span<const std::byte> bytes) { m_size += bytes.size(); }

    std::size_t Size() const { return m_size; }

 private:
    std::size_t m_size = 0;
};

}  // namespace YExcel
