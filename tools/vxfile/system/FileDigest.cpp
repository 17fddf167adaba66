#include "tools/vxfile/system/FileDigest.h"

#include <algorithm>
#include <cstddef>

namespace vxfile {

CXxh3Sum CFileDigest::HashNext(std::int64_t length) {
    while (length > 0) {
        if (m_ahead.empty()) m_ahead = m_blocks.Next();
        const auto size = static_cast<std::size_t>(std::min(length, static_cast<std::int64_t>(m_ahead.size())));
        m_xxh3.Add(m_ahead.first(size));
        m_ahead = m_ahead.subspan(size);
        length -= static_cast<std::int64_t>(size);
    }
    return m_xxh3.Take();
}

}  // namespace vxfile
