#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "vxfileio/helpers/LittleEndian.h"

/// @file
/// What can be done with the fields of a record or header. It lists them once, in the order of their bytes:
///
///     void Fields(auto& body) const { body(row, column, xf, word); }
///
/// Size and bytes are two visitors of that list, so that they can't disagree. A field is an unsigned whole number as
/// wide as its type, a double, narrow text, something that lists fields of its own, or a range of any of these.

namespace vxfileio::helpers {

/// Takes lists of fields apart into `Number` and `Bytes` of the visitor that derives from it. A visitor that treats
/// counted strings in a way of its own has a `Text` for them.
template <class Visitor>
class FieldVisitor {
 public:
    constexpr void operator()(const auto&... fields) { (Visit(fields), ...); }

 private:
    template <class Field>
    constexpr void Visit(const Field& field) {
        auto& visitor = static_cast<Visitor&>(*this);
        if constexpr (std::unsigned_integral<Field>) {
            visitor.Number(field);
        } else if constexpr (std::same_as<Field, double>) {
            visitor.Number(std::bit_cast<std::uint64_t>(field));
        } else if constexpr (std::same_as<Field, std::string_view>) {
            visitor.Bytes(std::as_bytes(std::span(field)));
        } else if constexpr (requires { visitor.Text(field); }) {
            visitor.Text(field);
        } else if constexpr (requires { field.Fields(visitor); }) {
            field.Fields(visitor);
        } else {
            for (const auto& item : field)
                Visit(item);
        }
    }
};

/// Adds up the bytes of fields.
class FieldSize : public FieldVisitor<FieldSize> {
 public:
    constexpr void Number(std::unsigned_integral auto value) { m_size += sizeof(value); }
    constexpr void Bytes(std::span<const std::byte> bytes) { m_size += bytes.size(); }

    constexpr std::size_t Size() const { return m_size; }

 private:
    std::size_t m_size = 0;
};

/// Stores fields one after the other from an address on, where there is room for them.
class FieldStore : public FieldVisitor<FieldStore> {
 public:
    explicit FieldStore(std::byte* to) : m_to(to) {}

    void Number(std::unsigned_integral auto value) {
        StoreLittleEndian(m_to, value);
        m_to += sizeof(value);
    }
    void Bytes(std::span<const std::byte> bytes) { m_to = std::copy(bytes.begin(), bytes.end(), m_to); }

    /// Where the next field goes.
    std::byte* End() const { return m_to; }

 private:
    std::byte* m_to;
};

}  // namespace vxfileio::helpers
