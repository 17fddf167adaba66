#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "vxfileio/helpers/LittleEndian.h"

/// @file
/// Size, store and load: three visitors of one list of fields, so that they can't disagree. A record lists its fields
/// once, in the order of their bytes; `self` is the record, constant unless it is loaded:
///
///     static constexpr void Fields(auto& self, auto& body) { body(self.row, self.column, self.xf, self.word); }
///
/// A field is an unsigned integer, a double, narrow text, an object with its own list of fields, or a range of these. A
/// list preceded by its number of items is `body.template Counted<std::uint16_t>(self.items)`; any other list extends
/// to the end of the record, or to the fields after it in the same call.

namespace vxfileio::helpers {

/// Breaks fields down into calls of `Number` and `Bytes` of the derived visitor. A visitor that arranges counted
/// strings differently also has `Text`.
template <class Visitor>
class CFieldVisitor {
 public:
    constexpr void operator()(const auto&... fields) { (Visit(fields), ...); }

    /// The number of items, then the items. A text is cut to the maximum of `Count`.
    template <std::unsigned_integral Count>
    constexpr void Counted(const auto& items) {
        const auto count = static_cast<Count>(std::min<std::size_t>(items.size(), std::numeric_limits<Count>::max()));
        Visit(count);
        if constexpr (requires { items.substr(0, count); }) {
            Visit(items.substr(0, count));
        } else {
            Visit(items);
        }
    }

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
        } else if constexpr (requires { Field::Fields(field, visitor); }) {
            Field::Fields(field, visitor);
        } else {
            for (const auto& item : field)
                Visit(item);
        }
    }
};

/// Adds up the sizes of fields.
class CFieldSize : public CFieldVisitor<CFieldSize> {
 public:
    constexpr void Number(std::unsigned_integral auto value) noexcept { m_size += sizeof(value); }
    constexpr void Bytes(std::span<const std::byte> bytes) noexcept { m_size += bytes.size(); }

    constexpr std::size_t Size() const noexcept { return m_size; }

 private:
    std::size_t m_size = 0;
};

/// Stores fields one after the other at an address, which must have room for them.
class CFieldStore : public CFieldVisitor<CFieldStore> {
 public:
    explicit CFieldStore(std::byte* to) noexcept : m_to(to) {}

    void Number(std::unsigned_integral auto value) noexcept {
        StoreLittleEndian(m_to, value);
        m_to += sizeof(value);
    }
    void Bytes(std::span<const std::byte> bytes) noexcept { m_to = std::copy(bytes.begin(), bytes.end(), m_to); }

    /// The address of the next field.
    std::byte* End() const noexcept { return m_to; }

 private:
    std::byte* m_to;
};

/// Loads fields through two operations of the derived visitor: `bool Take(std::span<std::byte>)` copies the next bytes,
/// or returns false if there are too few; `std::size_t Left()` returns the number of bytes left in the record.
///
/// An incomplete field keeps its value, and so do all fields after it. A constant field, such as a reserved one, is
/// skipped. Text and spans point into memory of the visitor, which must outlive the record.
template <class Visitor>
class CFieldReader {
 public:
    CFieldReader() = default;
    CFieldReader(const CFieldReader&) = delete;
    CFieldReader& operator=(const CFieldReader&) = delete;

    void operator()() {}
    template <class First, class... Rest>
    void operator()(First&& first, Rest&&... rest) {
        CFieldSize after;
        after(rest...);
        Visit(first, after.Size());
        (*this)(rest...);
    }

    /// Loads the number of items, then as many items as are complete.
    template <std::unsigned_integral Count, class Items>
    void Counted(Items& items) {
        Count count = 0;
        (*this)(count);
        if constexpr (std::same_as<Items, std::string_view>) {
            items = Characters<char>(count);
        } else {
            for (; count > 0 && Append(items); --count) {
            }
            m_missing = count;
        }
    }

    /// Loads characters. Returns an empty text if some are missing.
    template <class Character>
    std::basic_string_view<Character> Characters(std::size_t count) {
        using Unit = std::conditional_t<sizeof(Character) == 1, std::uint8_t, std::uint16_t>;
        m_isWhole = m_isWhole && count <= Self().Left() / sizeof(Unit);
        if (!m_isWhole || count == 0) return {};
        auto& text = Keep<std::basic_string<Character>>();
        for (; count > 0; --count) {
            Unit unit = 0;
            (*this)(unit);
            text.push_back(static_cast<Character>(unit));
        }
        return text;
    }

    /// Returns whether all fields so far were complete.
    [[nodiscard]] bool IsWhole() const noexcept { return m_isWhole; }
    /// Returns the number of missing items in the last counted list.
    std::size_t Missing() const noexcept { return m_missing; }

 protected:
    /// Returns a new object that lives as long as this visitor.
    template <class Object>
    Object& Keep() {
        auto object = std::make_shared<Object>();
        m_kept.push_front(object);
        return *object;
    }

 private:
    Visitor& Self() { return static_cast<Visitor&>(*this); }

    template <class Field>
    void Visit(Field& field, std::size_t after) {
        using Value = std::remove_const_t<Field>;
        if constexpr (std::is_const_v<Field>) {
            Value skipped{};
            Visit(skipped, after);
        } else if constexpr (std::unsigned_integral<Field>) {
            std::array<std::byte, sizeof(Field)> bytes{};
            m_isWhole = m_isWhole && Self().Take(bytes);
            if (m_isWhole) field = LoadLittleEndian<Field>(bytes.data());
        } else if constexpr (std::same_as<Field, double>) {
            auto bits = std::bit_cast<std::uint64_t>(field);
            Visit(bits, after);
            field = std::bit_cast<double>(bits);
        } else if constexpr (requires { Self().Text(field); }) {
            Self().Text(field);
        } else if constexpr (requires { Field::Fields(field, Self()); }) {
            Field::Fields(field, Self());
        } else {
            Fill(field, after);
        }
    }

    template <class Item, std::size_t size>
    void Fill(std::array<Item, size>& items, std::size_t after) {
        for (Item& item : items)
            Visit(item, after);
    }

    template <class Item>
    void Fill(std::vector<Item>& items, std::size_t after) {
        CFieldSize size;
        size(Item{});
        while (Self().Left() >= size.Size() + after && Append(items)) {
        }
    }

    template <class Item>
    void Fill(std::span<const Item>& items, std::size_t after) {
        auto& kept = Keep<std::vector<Item>>();
        Fill(kept, after);
        items = kept;
    }

    /// Loads one more item. Returns false if it is incomplete.
    bool Append(auto& items) {
        typename std::remove_reference_t<decltype(items)>::value_type item{};
        (*this)(item);
        if (m_isWhole) items.push_back(item);
        return m_isWhole;
    }

    bool m_isWhole = true;
    std::size_t m_missing = 0;
    std::forward_list<std::shared_ptr<void>> m_kept;
};

/// Loads fields from bytes, which must outlive this visitor.
class CFieldLoad : public CFieldReader<CFieldLoad> {
 public:
    explicit CFieldLoad(std::span<const std::byte> from) noexcept : m_left(from) {}

    bool Take(std::span<std::byte> bytes) noexcept {
        if (m_left.size() < bytes.size()) return false;
        std::copy_n(m_left.begin(), bytes.size(), bytes.begin());
        m_left = m_left.subspan(bytes.size());
        return true;
    }
    std::size_t Left() const noexcept { return m_left.size(); }

    /// Returns whether all bytes were used and all fields were complete.
    [[nodiscard]] bool TookAll() const noexcept { return IsWhole() && m_left.empty(); }

 private:
    std::span<const std::byte> m_left;
};

}  // namespace vxfileio::helpers
