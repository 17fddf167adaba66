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

/// One cell of a sheet: a number, a text, or nothing. A cell without anything is a gap in the sheet.
///
/// A cell is small, since a sheet has many. Labels and doses are texts that fit into it; a longer one lies aside and is
/// the cell's own, so that cells aren't copied.
class Cell {
 public:
    /// The most characters of a text; the rest is cut off.
    static constexpr std::size_t kMostCharacters = 32767;

    Cell() = default;
    ~Cell() { Clear(); }
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;

    /// A saved workbook keeps the low 30 bits, sign included.
    void SetInteger(std::int32_t value) { Set(value, CellType::Integer); }
    void SetDouble(double value) {
        Set(value, CellType::Double);
        m_isShort = TwoDecimalTest(value);
    }
    /// Keeps a copy of the text up to its first NUL; an empty one clears the cell. Each byte is a character.
    void SetText(std::string_view text) { SetCharacters(text, CellType::Text); }
    /// The same with characters of two bytes.
    void SetWideText(std::u16string_view text) { SetCharacters(text, CellType::WideText); }
    /// Leaves nothing in the cell.
    void Clear() {
        if (m_isAside) delete[] Get<const std::byte*>();
        m_isAside = false;
        m_isShort = false;
        m_type = CellType::Undefined;
    }

    CellType Type() const { return m_type; }
    /// Tells whether this is a double that is stored in the short form of numbers.
    bool IsShortDouble() const { return m_isShort; }
    /// Returns the number of a Double or Integer cell, 0.0 of any other.
    double GetDouble() const {
        if (m_type == CellType::Double) return Get<double>();
        return m_type == CellType::Integer ? Get<std::int32_t>() : 0.0;
    }
    /// Returns the number of an Integer cell; of a Double cell, without its decimals, or -2147483648 if it doesn't fit;
    /// 0 of any other.
    std::int32_t GetInteger() const;
    /// Returns the text of a Text cell, empty of any other. It is the cell's, valid until the cell changes.
    std::string_view GetText() const { return GetCharacters<char>(CellType::Text); }
    /// The same of a WideText cell.
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

    /// The bytes of the number, of the zero-terminated text, or of the address of that text.
    alignas(double) std::array<std::byte, 13> m_value = {};
    CellType m_type = CellType::Undefined;
    bool m_isAside = false;  ///< The text lies elsewhere.
    bool m_isShort = false;  ///< Found out once, since a workbook's cells are gone through more than once.
};

static_assert(sizeof(Cell) == 16);

}  // namespace YExcel
