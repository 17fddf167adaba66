#include "tools/vxfile/system/FileBlocks.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/system/Interrupt.h"
#include "verify/Failure.h"

namespace vxfile {

CFileBlocks::CFileBlocks(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size)
    : m_file(file), m_path(std::move(path)), m_size(size), m_block(static_cast<std::size_t>(std::min(size, kSize))) {}

std::span<const std::byte> CFileBlocks::Next() {
    CheckInterrupt();
    const std::int64_t size = std::min(m_size - m_read, kSize);
    const auto block = std::span(m_block).first(static_cast<std::size_t>(size));
    if (size == 0 || !m_file.ReadExactly(m_read, block))
        throw CFailure("Can't read " + m_path + " from byte " + std::to_string(m_read) +
                       " on: it became shorter, or the disk has a bad place; try again.");
    m_read += size;
    return block;
}

}  // namespace vxfile
