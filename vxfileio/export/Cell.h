#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace YExcel {

/// What a cell holds.
enum class CellType : std::uint8_t { Undefined = 0, Integer = 1, Double = 2, Text = 3, WideText = 4 };

/// One cell of a sheet: a number, a text, or nothing. A cell without anything is a gap in the sheet.
///
/// A cell is small, since a sheet has many; a text lies aside and is the cell's own, so that cells aren't copied.
class Cell {
 public:
    /// The characters that a spreadsheet keeps of a text; what comes behind them is cut off.
    static constexpr std::size_t kMostCharacters = 32767;

    /// A saved workbook keeps the low 30 bits, sign included.
    void SetInteger(std::int32_t value) { m_value = value; }
    void SetDouble(double value) { m_value = value; }
    /// Keeps a copy of the text up to its first NUL; an empty one clears the cell. Each byte is a character.
    void SetText(std::string_view text);
    /// The same with characters of two bytes.
    void SetWideText(std::u16string_view text);
    /// Leaves nothing in the cell.
    void Clear() { m_value = std::monostate(); }

    CellType Type() const { return static_cast<CellType>(m_value.index()); }
    /// Returns the number of a Double or Integer cell, 0.0 of any other.
    double GetDouble() const {
        if (const auto* value = std::get_if<double>(&m_value)) return *value;
        const auto* whole = std::get_if<std::int32_t>(&m_value);
        return whole == nullptr ? 0.0 : *whole;
    }
    /// Returns the number of an Integer cell; of a Double cell, without its decimals, or -2147483648 if it doesn't fit;
    /// 0 of any other.
    std::int32_t GetInteger() const;
    /// Returns the text of a Text cell, empty of any other. It is the cell's, valid until the cell changes.
    std::string_view GetText() const;
    /// The same of a WideText cell.
    std::u16string_view GetWideText() const;

 private:
    /// In the order of `CellType`.
    std::variant<std::monostate, std::int32_t, double, std::unique_ptr<const std::string>,
                 std::unique_ptr<const std::u16string>>
        m_value;
};

static_assert(sizeof(Cell) == 16);

}  // namespace YExcel
