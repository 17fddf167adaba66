#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "vxfileio/rawdata/Layout.h"

/// @file
/// Finds the damaged cells of a header. Readers trust cells; a search for headers can't.

namespace vxfileio::recovery {

/// One bit per row of a header's layout.
using CRows = std::bitset<32>;

/// The damage to the cells of a header.
struct CDamage {
    CRows damaged;  ///< Not as a writer leaves them, or impossible numbers.
    CRows lost;     ///< Damaged cells whose value is unreliable. In the others only the bytes around it are damaged.
    CRows odd;      ///< Texts with separators: damaged, or written so by some program.

    void Lose(std::size_t row) { damaged[row] = lost[row] = true; }
};

/// The location of a header. Bytes inserted into it or removed from it move the rows after that place.
struct CHdrPlace {
    std::int64_t begin = 0;
    std::size_t movedRow = 0;  ///< The first row that moved, if `moved` isn't 0.
    std::int64_t moved = 0;    ///< By how many bytes it moved.

    std::int64_t OffsetOf(const auto& layout, std::size_t row) const {
        return begin + static_cast<std::int64_t>(layout.cells[row].offset) + (row >= movedRow ? moved : 0);
    }
    std::int64_t End(const auto& layout) const { return begin + static_cast<std::int64_t>(layout.size) + moved; }
};

/// Returns the bytes of a header with the moved rows in their places. Bytes outside the input are NUL.
template <class Layout>
std::string HdrBytes(auto& window, const Layout& layout, const CHdrPlace& place) {
    std::string bytes(layout.size, '\0');
    for (std::size_t row = 0; row < layout.cells.size(); ++row) {
        const auto& cell = layout.cells[row];
        const auto found = window.At(place.OffsetOf(layout, row), cell.width);
        bytes.replace(cell.offset, found.size(), found);
    }
    return bytes;
}

/// Returns what became of the cells of a header; `bytes` are the whole header.
template <class Cell>
CDamage DamageOf(const rawdata::CHdrLayout<Cell>& layout, std::string_view bytes);

}  // namespace vxfileio::recovery
