#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "recovery/Input.h"
#include "vxfileio/rawdata/Layout.h"

/// @file
/// The cells of a header, and which of them are damaged. Readers trust cells; a search for headers can't.

namespace vxfileio::recovery {

enum class EKind : std::uint8_t { File, Recording, Segment };

/// A cell of a header of any kind.
struct CFormCell {
    std::string_view key;
    std::size_t offset = 0;
    std::size_t width = 0;
    rawdata::ERole role = rawdata::ERole::Value;
    std::variant<const rawdata::CFileCell*, const rawdata::CRecordingCell*, const rawdata::CSegmentCell*> rule;

    std::size_t End() const { return offset + width; }
    /// Returns whether a cell of another layout is the same.
    bool operator==(const CFormCell& other) const {
        return key == other.key && offset == other.offset && width == other.width && role == other.role;
    }
};

/// The cells of one kind of header in one layout.
struct CForm {
    EKind kind = EKind::File;
    std::uint8_t layout = 0;  ///< Index in `Layouts()`.
    std::int64_t size = 0;    ///< Bytes of the header.
    std::vector<CFormCell> cells;

    /// Returns the row of the first cell with this key. Requires: there is one.
    std::size_t RowOf(std::string_view key) const;
};

/// Returns the forms of one kind of header, the newest last. Of equal forms, there is only the newest.
std::span<const CForm> FormsOf(EKind kind);

/// Returns the size of the smallest header of a kind.
std::int64_t LeastSizeOf(EKind kind);

/// Returns the form that headers of a kind have in a layout.
const CForm& FormOf(EKind kind, const rawdata::CLayout& layout);

/// The location of a header. Bytes inserted into it or removed from it move the rows after that place.
struct CHdrPlace {
    std::int64_t begin = 0;
    std::size_t movedRow = 0;  ///< The first row that moved, if `moved` isn't 0.
    std::int64_t moved = 0;    ///< By how many bytes it moved.

    std::int64_t OffsetOf(const CForm& form, std::size_t row) const {
        return begin + static_cast<std::int64_t>(form.cells[row].offset) + (row >= movedRow ? moved : 0);
    }
    std::int64_t End(const CForm& form) const { return begin + form.size + moved; }
};

/// One bit per row of a form.
using CRows = std::bitset<32>;

/// The cells of a header in the input, and their damage.
struct CHdrCells {
    const CForm* form = nullptr;
    std::string bytes;   ///< The header, with the moved rows in their places. Bytes outside the input are NUL.
    CRows damaged = {};  ///< Not as a writer leaves them, or impossible numbers.
    CRows lost = {};  ///< Damaged cells whose value is unreliable. In the others only the bytes around it are damaged.
    CRows odd = {};   ///< Texts with separators: damaged, or written so by some program.

    std::string_view Cell(std::size_t row) const { return rawdata::CellIn(form->cells[row], bytes); }
    /// Returns the value of the first cell with this key.
    std::string_view Value(std::string_view key) const;
    bool IsLost(std::string_view key) const { return lost[form->RowOf(key)]; }
    void Lose(std::size_t row) { damaged[row] = lost[row] = true; }
    /// Replaces the text of a cell, which includes its key.
    void SetText(std::size_t row, std::string_view text);
};

/// Reads a header as cells of a form.
CHdrCells CellsAt(CWindow& window, const CForm& form, const CHdrPlace& place);

}  // namespace vxfileio::recovery
