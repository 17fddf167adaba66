#include "vxfileio/export/compound/BlockWrites.h"

#include <algorithm>

namespace vxfileio::compound {

namespace {

constexpr std::uint32_t BlocksIn(helpers::CBytes bytes) {
    return static_cast<std::uint32_t>(bytes.size() / SectorFile::kBlockSize);
}

}  // namespace

void CBlockWrites::Add(std::uint32_t first, helpers::CBytes bytes) {
    const std::uint32_t end = first + BlocksIn(bytes);
    const helpers::CBytes whole = bytes.first(BlocksIn(bytes) * SectorFile::kBlockSize);
    const helpers::CBytes rest = bytes.subspan(whole.size());
    if (!whole.empty()) {
        m_parts.emplace(first, whole);
        m_endOfLent = std::max(m_endOfLent, end);
    }
    if (rest.empty()) return;
    Block last{};
    std::copy(rest.begin(), rest.end(), last.begin());
    AddCopy(end, last);
}

void CBlockWrites::AddCopy(std::uint32_t index, std::span<const std::byte, SectorFile::kBlockSize> block) {
    Block& copy = m_copies.emplace_back();
    std::copy(block.begin(), block.end(), copy.begin());
    m_parts.emplace(index, copy);
}

/// Writes the parts that begin before block `end`, and those that directly follow them.
bool CBlockWrites::WriteBefore(std::uint32_t end, SectorFile& file) {
    bool isComplete = true;
    while (!m_parts.empty() && m_parts.begin()->first < end) {
        const std::uint32_t first = m_parts.begin()->first;
        std::uint32_t next = first;
        std::array<helpers::CBytes, SectorFile::kMostParts> run;
        std::size_t count = 0;
        while (count < run.size() && !m_parts.empty() && m_parts.begin()->first == next) {
            const helpers::CBytes part = m_parts.extract(m_parts.begin()).mapped();
            next += BlocksIn(part);
            run[count++] = part;
        }
        isComplete = file.WriteRun(first, std::span(run).first(count)) && isComplete;
    }
    return isComplete;
}

}  // namespace vxfileio::compound
