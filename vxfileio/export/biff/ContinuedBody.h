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
/// Bodies longer than a record may be: the rest goes into CONTINUE records after it.

namespace YExcel {

using vxfileio::helpers::CFieldSize;
using vxfileio::helpers::CFieldVisitor;

/// The most bytes of a body that one record holds, its header not counted.
inline constexpr std::size_t kMostBody = 8224;
/// Code and length in front of every body.
inline constexpr std::size_t kHeaderSize = 4;
inline constexpr std::uint16_t kContinue = 0x003C;

/// Lays the fields of a body out over a record and as many CONTINUE records as it takes, and tells `Records` what goes
/// where: `Begin(code)` for each record, then `Bytes` of its body.
///
/// Numbers and bytes are cut wherever a record is full. A counted string is cut between two characters, and its option
/// byte is said again in front of those that go on behind the cut; it moves as a whole to the next record if it doesn't
/// fit and hardly any of it would stay.
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
    /// With less room than this, a string that doesn't fit isn't even begun.
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
    std::size_t m_room = kMostBody;  ///< Bytes that the record at hand still takes.
};

/// Adds up the bytes of records, headers included.
class CRecordsSize {
 public:
    void Begin(std::uint16_t /*code*/) { m_size += kHeaderSize; }
    void Bytes(std::span<const std::byte> bytes) { m_size += bytes.size(); }

    std::size_t Size() const { return m_size; }

 private:
    std::size_t m_size = 0;
};

}  // namespace YExcel
