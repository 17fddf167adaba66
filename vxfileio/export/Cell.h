#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "vxfileio/export/biff/RkNumber.h"

namespace YExcel {

/// What a cell holds.
enum class CellType : std::uint8_t { Undefined = 0, Integer = 1, Double = 2, Text = 3, WideText = 4 };

/// A cell of a sheet: a number, a text, or nothing. A cell with nothing is a gap in the sheet.
///
/// A cell is small, since a sheet has many. Short texts, such as labels and doses, are stored in the cell. A longer
/// text is allocated separately and belongs to the cell, so cells can't be copied.
class Cell {
 public:
    /// The maximum length of a text; the rest is cut off.
    static constexpr std::size_t kMostCharacters = 32767;

    Cell() = default;
    ~Cell() { Clear(); }
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;

    /// A saved workbook keeps only the low 30 bits, including the sign.
    void SetInteger(std::int32_t value) { Set(value, CellType::Integer); }
    void SetDouble(double value) {
        Set(value, CellType::Double);
        m_isShort = TwoDecimalTest(value);
    }
    /// Copies the text up to its first NUL; an empty text clears the cell. Each byte is a character.
    void SetText(std::string_view text) { SetCharacters(text, CellType::Text); }
    /// The same with 16-bit characters.
    void SetWideText(std::u16string_view text) { SetCharacters(text, CellType::WideText); }
    /// Clears the cell.
    void Clear() {
        if (m_isAside) delete[] Get<const std::byte*>();
        m_isAside = false;
        m_isShort = false;
        m_type = CellType::Undefined;
    }

    CellType Type() const { return m_type; }
    /// Returns whether this is a double that is stored in the short form of numbers.
    bool IsShortDouble() const { return m_isShort; }
    /// Returns the number of a Double or Integer cell; 0.0 for any other.
    double GetDouble() const {
        if (m_type == CellType::Double) return Get<double>();
        return m_type == CellType::Integer ? Get<std::int32_t>() : 0.0;
    }
    /// Returns the number of an Integer cell. For a Double cell, returns its integer part, or -2147483648 if that
    /// doesn't fit; for any other, 0.
    std::int32_t GetInteger() const;
    /// Returns the text of a Text cell; empty for any other. It is valid until the cell changes.
    std::string_view GetText() const { return GetCharacters<char>(CellType::Text); }
    /// The same for a WideText cell.
    std::u16string_view GetWideText() const { return GetCharacters<char16_t>(CellType::WideText); }

 private:
    template <class Value>
    void Set(Value value, CellType type) {
        Clear();
        std::memcpy(m_value.data(), &value, sizeof value);
        m_type = type;
    }
    template <class Value>
    Value Get() const {
        Value value;
        std::memcpy(&value, m_value.data(), sizeof value);
        return value;
    }
    template <class Character>
    void SetCharacters(std::basic_string_view<Character> text, CellType type);
    template <class Character>
    std::basic_string_view<Character> GetCharacters(CellType type) const;

    /// The bytes of the number, of the zero-terminated text, or of a pointer to the text.
    alignas(double) std::array<std::byte, 13> m_value = {};
    CellType m_type = CellType::Undefined;
    bool m_isAside = false;  ///< The text is allocated separately.
    bool m_isShort = false;  ///< Computed once, since cells are visited more than once.
};

static_assert(sizeof(Cell) == 16);

}  // namespace YExcel
