#include "tools/vxfile/system/FileDigest.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/system/Interrupt.h"
#include "verify/Failure.h"

namespace vxfile {

CFileDigest::CFileDigest(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size)
    : m_file(file), m_path(std::move(path)), m_size(size) {
    for (auto& block : m_blocks)
        block.resize(static_cast<std::size_t>(std::min(size, static_cast<std::int64_t>(kBlockSize))));
}

CFileDigest::~CFileDigest() {
    if (m_adding.valid()) m_adding.wait();
}

CXxh3Sum CFileDigest::HashNext(std::int64_t length) {
    while (length > 0) {
        if (m_ahead.empty()) ReadBlock();
        const auto size = std::min(length, static_cast<std::int64_t>(m_ahead.size()));
        m_xxh3.Add(m_ahead.first(static_cast<std::size_t>(size)));
        m_ahead = m_ahead.subspan(static_cast<std::size_t>(size));
        length -= size;
    }
    return m_xxh3.Take();
}

std::string CFileDigest::Sha256() {
    if (m_adding.valid()) m_adding.get();
    return m_sha256.Finish();
}

/// Reads the next block while the previous one is added to the SHA-256.
void CFileDigest::ReadBlock() {
    CheckInterrupt();
    std::swap(m_blocks[0], m_blocks[1]);
    const auto left = static_cast<std::size_t>(std::min(m_size - m_read, static_cast<std::int64_t>(kBlockSize)));
    const auto block = std::span(m_blocks[0]).first(left);
    if (left == 0 || !m_file.ReadExactly(m_read, block))
        throw CFailure("Can't read " + m_path + " from byte " + std::to_string(m_read) +
                       " on: it became shorter, or the disk has a bad place; try again.");
    m_read += static_cast<std::int64_t>(left);
    m_ahead = block;
    if (m_adding.valid()) m_adding.get();
    if (m_read == m_size) return m_sha256.Add(block);  // too short for a thread
    // Without a free thread, the work is done at the next wait.
    m_adding = std::async(std::launch::async | std::launch::deferred, [this, block] { m_sha256.Add(block); });
}

}  // namespace vxfile
