#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>

#include "vxfileio/helpers/Tokenizer.h"
#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// One cell as bytes: `key=value` or `key=item:item`, NUL bytes, CR LF.

namespace vxfileio::rawdata {

/// Puts the text of one cell together in place. Nothing is ever written outside the cell.
class CCellWriter {
 public:
    /// Fills the whole cell, with the key as its text so far. The bytes stay the caller's.
    CCellWriter(std::span<char> cell, std::string_view key) : m_room(cell.first(cell.size() - kCellEndSize)) {
        std::fill(cell.begin(), cell.end(), '\0');
        std::copy(kCellEnd.begin(), kCellEnd.end(), cell.last(kCellEndSize).begin());
        PutBare(key);
    }

    /// Adds text without a separator.
    void PutBare(std::string_view text) {
        if (text.size() > m_room.size()) {
            m_fits = false;
            return;
        }
        std::copy(text.begin(), text.end(), m_room.begin());
        m_room = m_room.subspan(text.size());
    }

    /// Adds a value, or the next item of a list, after its `=` or `:`. Requires: it isn't empty.
    void PutItem(std::string_view item) {
        PutSeparator();
        PutBare(item);
    }

    /// The same with a whole number.
    void PutItem(std::integral auto number) {
        PutSeparator();
        char* const begin = m_room.data();
        const auto [end, error] = std::to_chars(begin, begin + m_room.size(), number);
        if (error != std::errc()) {
            m_fits = false;
            return;
        }
        m_room = m_room.subspan(static_cast<std::size_t>(end - begin));
    }

    /// Adds a value that may be empty: then the cell keeps its key alone.
    void PutValue(std::string_view value) {
        if (!value.empty()) PutItem(value);
    }

    /// Returns how many bytes of the cell are left for text.
    [[nodiscard]] std::size_t Left() const noexcept { return m_room.size(); }

    /// Returns whether everything fit the cell.
    [[nodiscard]] bool Fits() const noexcept { return m_fits; }

 private:
    void PutSeparator() {
        PutBare(m_hasItem ? ":" : "=");
        m_hasItem = true;
    }

    std::span<char> m_room;  ///< What is left for text.
    bool m_fits = true;
    bool m_hasItem = false;
};

/// A value or an item ends at the first of these. A run of them counts as one separator. A cell without NUL ends in CR
/// LF.
inline constexpr std::string_view kSeparators = "=:\r\n";

/// Returns whether a text that is written to a cell is read back whole: it has no separator and no NUL.
constexpr bool ReadsBackWhole(std::string_view text) noexcept {
    return text.find_first_of(kSeparators) == std::string_view::npos && text.find('\0') == std::string_view::npos;
}

/// Returns the text of a cell: its bytes up to the first NUL. It points into the cell.
std::string_view CellText(std::string_view cell);

/// The tokens of a cell after its key: the one value, or the items of a list. They point into the cell.
class CCellItems {
 public:
    explicit CCellItems(std::string_view cell);

    /// Returns the next item, or nothing if there is none left.
    std::optional<std::string_view> Next() { return m_tokens.Next(); }

 private:
    helpers::CTokenizer m_tokens;
};

/// Returns the value of a cell; empty if the cell holds its key alone. It points into the cell.
std::string_view CellValue(std::string_view cell);

}  // namespace vxfileio::rawdata
