#include "vxfileio/export/compound/SectorFile.h"

#include <algorithm>
#include <array>

namespace vxfileio::compound {

using helpers::CBytes;
using helpers::CFile;

namespace {

using Block = std::array<std::byte, SectorFile::kBlockSize>;

constexpr std::int64_t PositionOf(std::uint32_t index) {
    return std::int64_t{index} * std::int64_t{SectorFile::kBlockSize};
}

constexpr std::uint64_t BlocksOf(std::uint64_t bytes) {
    return (bytes + SectorFile::kBlockSize - 1) / SectorFile::kBlockSize;
}

}  // namespace

bool SectorFile::Create(const std::string& path) {
    Close();
    return m_file->Create(path) && Open(path, kRead | kWrite);
}

bool SectorFile::Open(const std::string& path, std::uint32_t mode) {
    Close();
    m_path = path;
    m_mode = mode;
    if (!OpenInMode()) return false;
    m_byteSize = static_cast<std::uint64_t>(m_file->Size());
    m_blockCount = static_cast<std::uint32_t>(BlocksOf(m_byteSize));
    return true;
}

void SectorFile::Use(CFile& file) {
    Close();
    m_file = &file;
    m_mode = kWrite;
}

void SectorFile::Close() {
    m_own.Close();
    m_file = &m_own;
    m_path.clear();
    m_mode = 0;
    m_blockCount = 0;
    m_byteSize = 0;
}

bool SectorFile::Read(std::uint32_t index, std::span<std::byte, kBlockSize> buffer) const {
    if (!HasMode(kRead) || index >= m_blockCount) return false;
    return m_file->ReadExactly(PositionOf(index), buffer);
}

bool SectorFile::Write(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer) {
    if (!HasMode(kWrite)) return false;
    const CBytes block = buffer;
    WriteRun(index, {&block, 1});  // a refused block isn't reported
    return OpenInMode();
}

bool SectorFile::WriteRun(std::uint32_t index, std::span<const CBytes> parts) {
    if (!HasMode(kWrite)) return false;
    std::array<CBytes, kMostParts> all;
    std::copy(parts.begin(), parts.end(), all.begin());
    std::size_t bytes = 0;
    for (const CBytes& part : parts)
        bytes += part.size();
    CountWritten(index, bytes / kBlockSize);
    return m_file->WriteAt(PositionOf(index), {all[0], all[1], all[2], all[3]});
}
static_assert(SectorFile::kMostParts == 4, "WriteRun passes on this many");

bool SectorFile::Insert(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer) {
    if (index > m_blockCount) return Write(index, buffer);
    const std::uint32_t end = m_blockCount;
    return Write(end, buffer) && Move(end, index);
}

bool SectorFile::Swap(std::uint32_t a, std::uint32_t b) {
    Block blockA{};
    Block blockB{};
    return Read(a, blockA) && Read(b, blockB) && Write(a, blockB) && Write(b, blockA);
}

bool SectorFile::Move(std::uint32_t from, std::uint32_t to) {
    if (from >= m_blockCount || to >= m_blockCount) return false;
    while (from != to) {
        const std::uint32_t next = from < to ? from + 1 : from - 1;
        if (!Swap(from, next)) return false;
        from = next;
    }
    return true;
}

bool SectorFile::OpenInMode() {
    if (m_file != &m_own) return IsOpen();
    if ((m_mode & kWrite) != 0) return m_file->OpenForUpdate(m_path);
    return (m_mode & kRead) != 0 && m_file->OpenForReading(m_path);
}

/// Blocks beyond the end increase the size by their own size; the gap before them isn't counted.
void SectorFile::CountWritten(std::uint32_t index, std::size_t blocks) {
    const std::uint64_t end = std::uint64_t{index} + blocks;
    if (blocks == 0 || end <= m_blockCount) return;
    m_byteSize += (end - std::max<std::uint64_t>(index, m_blockCount)) * kBlockSize;
    m_blockCount = static_cast<std::uint32_t>(end);
}

}  // namespace vxfileio::compound
