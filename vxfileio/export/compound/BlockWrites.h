#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <span>
#include <utility>

#include "vxfileio/export/compound/SectorFile.h"

namespace vxfileio::compound {

/// Blocks to be written. They are collected first, so that adjacent blocks are written in one system call even if they
/// are scattered in memory.
class CBlockWrites {
 public:
    using Block = std::array<std::byte, SectorFile::kBlockSize>;

    /// Adds blocks with these bytes, beginning with block `first`. The last block is padded with zeros. Stores only a
    /// pointer: the caller owns the bytes, which must not change until they are written. No block may be added twice.
    void Add(std::uint32_t first, helpers::CBytes bytes);
    /// Adds a copy of one block.
    void AddCopy(std::uint32_t index, std::span<const std::byte, SectorFile::kBlockSize> block);

    /// Writes all blocks in the order of the file. Returns whether the system accepted everything. Continues with the
    /// other blocks if one is refused.
    bool WriteTo(SectorFile& file) { return WriteBefore(std::numeric_limits<std::uint32_t>::max(), file); }
    /// The same with the blocks up to the last one that isn't a copy. Those after it remain.
    bool WriteLentTo(SectorFile& file) { return WriteBefore(std::exchange(m_endOfLent, 0), file); }

 private:
    bool WriteBefore(std::uint32_t end, SectorFile& file);

    std::map<std::uint32_t, helpers::CBytes> m_parts;  ///< Whole blocks, by the number of the first one.
    std::deque<Block> m_copies;                        ///< A deque, so that they don't move when others are added.
    std::uint32_t m_endOfLent = 0;                     ///< The block after the last one that isn't a copy.
};

}  // namespace vxfileio::compound
