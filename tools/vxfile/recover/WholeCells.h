#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// Which cells of a header are as a writer leaves them, to the byte. A reader takes cells on trust; whoever looks for
/// headers in a damaged file can't.

namespace vxfile {

/// One bit per row of a header's table: that cell is damaged.
using CDamagedCells = std::bitset<32>;

/// Returns the value of a cell that is whole: the key, a `=` and the value if there is one, NUL bytes and CR LF. It
/// points into the cell. Nothing is returned for any other cell, and for one that isn't there in full.
std::optional<std::string_view> WholeValue(std::string_view cell, std::string_view key);

/// @name Damage
/// Each tells which cells of a header aren't whole, or hold what their type doesn't admit: a number that isn't written
/// as this format writes it, a position below -1. `bytes` may be cut short; cells that are missing are damaged.
/// @{
CDamagedCells DamagedFileCells(std::string_view bytes);
CDamagedCells DamagedRecordingCells(std::string_view bytes, std::int32_t version);
CDamagedCells DamagedSegmentCells(std::string_view bytes);
/// @}

/// Returns the place of a key in its table; of the first, if it stands there twice.
consteval std::size_t RowOf(const auto& cells, std::string_view key) {
    std::size_t row = 0;
    while (cells[row].key != key)
        ++row;
    return row;
}

}  // namespace vxfile
