#include "vxfileio/export/compound/BlockWrites.h"

#include <algorithm>
#include <span>

namespace vxfileio::compound {

void CBlockWrites::Add(std::uint32_t first, CBytes bytes) {
    const std::size_t wholeBlocks = bytes.size() / SectorFile::kBlockSize;
    const CBytes whole = bytes.first(wholeBlocks * SectorFile::kBlockSize);
    const CBytes rest = bytes.subspan(whole.size());
    if (!whole.empty()) m_parts.push_back({first, whole});
    if (rest.empty()) return;
    Block last{};
    std::copy(rest.begin(), rest.end(), last.begin());
    AddCopy(first + static_cast<std::uint32_t>(wholeBlocks), last);
}

void CBlockWrites::AddCopy(std::uint32_t index, const Block& block) {
    m_parts.push_back({index, m_copies.emplace_back(block)});
}

bool CBlockWrites::WriteTo(SectorFile& file) {
    std::sort(m_parts.begin(), m_parts.end(), [](const CPart& a, const CPart& b) { return a.first < b.first; });
    bool isComplete = true;
    for (auto next = m_parts.begin(); next != m_parts.end();) {
        const std::uint32_t first = next->first;
        std::uint32_t end = first;
        std::array<CBytes, SectorFile::kMostParts> run;
        std::size_t count = 0;
        for (; next != m_parts.end() && next->first == end && count < run.size(); ++next) {
            run[count++] = next->bytes;
            end = next->End();
        }
        isComplete = file.WriteRun(first, std::span(run).first(count)) && isComplete;
    }
    return isComplete;
}

}  // namespace vxfileio::compound
