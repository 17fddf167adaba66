#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tools/vxfile/recover/FixedLayouts.h"

/// @file
/// Which cells of a header are as a writer leaves them, to the byte. A reader takes cells on trust; whoever looks for
/// headers in a damaged file can't.

namespace vxfile {

/// One bit per row of a header's table: that cell is damaged.
using CDamagedCells = std::bitset<32>;

/// What became of the cells of a header.
struct CDamage {
    CDamagedCells damaged;  ///< They aren't as a writer leaves them.
    CDamagedCells lost;     ///< Of these, those whose text can't be relied on; of the others only what surrounds it.
    CDamagedCells odd;      ///< Texts with separators, which are damaged or which some program wrote so.

    void Lose(std::size_t row) { damaged[row] = lost[row] = true; }
};

/// @name Damage
/// Each tells which cells of a header aren't whole: what isn't as the format has it, but for separators within a text,
/// and numbers that can't be. `bytes` may be cut short; cells that are missing are lost.
/// @{
CDamage DamageOfFileHdr(std::string_view bytes);
CDamage DamageOfRecordingHdr(std::string_view bytes, std::int32_t version);
CDamage DamageOfSegmentHdr(std::string_view bytes);
/// @}

/// Loses the cells of a recording header that end behind its first `size` bytes.
void LoseCellsBehind(std::size_t size, std::int32_t version, CDamage& damage);

/// Returns the place of a key in its table; of the first, if it stands there twice.
consteval std::size_t RowOf(const auto& cells, std::string_view key) {
    std::size_t row = 0;
    while (cells[row].key != key)
        ++row;
    return row;
}

}  // namespace vxfile
