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

/// Blocks that are to be written. They are gathered first, so that those that stand side by side in the file go to the
/// system together, however scattered they are in memory.
class CBlockWrites {
 public:
    using Block = std::array<std::byte, SectorFile::kBlockSize>;

    /// Adds the blocks from `first` on that these bytes fill, the rest of the last one being zeros. The bytes are lent:
    /// they are the caller's and must stay until they are written. No block may wait twice.
    void Add(std::uint32_t first, helpers::CBytes bytes);
    /// Adds one block, of which a copy is kept.
    void AddCopy(std::uint32_t index, std::span<const std::byte, SectorFile::kBlockSize> block);

    /// Writes all blocks in the order of the file. Returns whether the system took everything; what it refused doesn't
    /// keep the others from being written.
    bool WriteTo(SectorFile& file) { return WriteBefore(std::numeric_limits<std::uint32_t>::max(), file); }
    /// The same with the blocks up to the last one whose bytes are lent. Those after it keep waiting.
    bool WriteLentTo(SectorFile& file) { return WriteBefore(std::exchange(m_endOfLent, 0), file); }

 private:
    bool WriteBefore(std::uint32_t end, SectorFile& file);

    std::map<std::uint32_t, helpers::CBytes> m_parts;  ///< Whole blocks, by the number of the first.
    std::deque<Block> m_copies;     ///< A deque, since they must stay where they are while others are added.
    std::uint32_t m_endOfLent = 0;  ///< The block after the last one that was lent.
};

}  // namespace vxfileio::compound
