#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "vxfileio/export/compound/SectorFile.h"

namespace vxfileio::compound {

/// Blocks that are to be written. They are gathered first, so that those that stand side by side in the file go to the
/// system together, however scattered they are in memory.
class CBlockWrites {
 public:
    using Block = std::array<std::byte, SectorFile::kBlockSize>;

    /// Adds the blocks from `first` on that these bytes fill, the rest of the last one being zeros. The bytes are the
    /// caller's and must outlive this object. No block may be added twice.
    void Add(std::uint32_t first, CBytes bytes);
    /// Adds one block, of which a copy is kept.
    void AddCopy(std::uint32_t index, const Block& block);

    /// Writes all blocks in the order of the file. Returns whether the system took everything; what it refused doesn't
    /// keep the others from being written.
    bool WriteTo(SectorFile& file);

 private:
    struct CPart {
        std::uint32_t first;
        CBytes bytes;  ///< Whole blocks.

        std::uint32_t End() const { return first + static_cast<std::uint32_t>(bytes.size() / Block().size()); }
    };

    std::vector<CPart> m_parts;
    std::deque<Block> m_copies;  ///< A deque, since they must stay where they are while others are added.
};

}  // namespace vxfileio::compound
