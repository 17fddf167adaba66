#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "vxfileio/helpers/File.h"

namespace vxfileio::rawdata {

/// Watches a walk along a chain of positions, so that a circle in a damaged file can't keep a reader going forever. A
/// chain that runs backwards without a circle is valid.
class CChainGuard {
 public:
    /// `leastItemSize` is the size of the smallest item that a position of the chain can point to. The caller owns the
    /// file, which must outlive this object.
    CChainGuard(const helpers::CFile& file, std::size_t leastItemSize)
        : m_file(&file), m_leastItemSize(static_cast<std::int64_t>(std::max<std::size_t>(leastItemSize, 1))) {}

    /// Counts one hop. Returns false if the walk has been at `position` before, or has made more hops than the file has
    /// room for items.
    [[nodiscard]] bool Admits(std::int64_t position) {
        if (position == m_marked) return false;
        ++m_hops;
        // Of a circle of n positions, one that is marked at 2^k >= n hops comes round again within n further hops.
        if ((m_hops & (m_hops - 1)) == 0) m_marked = position;
        if (m_hops > m_mostHops) m_mostHops = m_file->Size() / m_leastItemSize + 1;
        return m_hops <= m_mostHops;
    }

 private:
    const helpers::CFile* m_file;
    std::int64_t m_leastItemSize;
    std::int64_t m_mostHops = 0;  ///< Asked from the file once it is reached: the file may have grown.
    std::int64_t m_hops = 0;
    std::int64_t m_marked = -1;
};

}  // namespace vxfileio::rawdata
