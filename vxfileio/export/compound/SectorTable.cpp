#include "vxfileio/export/compound/SectorTable.h"

#include <algorithm>
#include <utility>

namespace vxfileio::compound {

void CSectorTable::Clear() {
    m_marks.clear();
    m_firstFree = 0;
}

void CSectorTable::AddSector() { m_marks.resize(m_marks.size() + kMarksPerSector, kFree); }

void CSectorTable::FitChain(std::uint32_t& first, std::size_t count) {
    std::uint32_t last = kEndOfChain;
    const auto linkTo = [&](std::uint32_t sector) { (last == kEndOfChain ? first : m_marks[last]) = sector; };
    std::uint32_t next = first;
    for (std::size_t i = 0; i < count; ++i) {
        if (next == kEndOfChain) {
            next = Take();
            linkTo(next);
        }
        last = next;
        next = m_marks[last];
    }
    linkTo(kEndOfChain);
    Release(next);
}

std::uint32_t CSectorTable::RunLength(std::uint32_t sector) const {
    std::uint32_t length = 1;
    while (m_marks[sector + length - 1] == sector + length)
        ++length;
    return length;
}

std::size_t CSectorTable::UsedSize() const {
    const auto isUsed = [](std::uint32_t mark) { return mark != kFree; };
    return static_cast<std::size_t>(m_marks.rend() - std::find_if(m_marks.rbegin(), m_marks.rend(), isUsed));
}

std::span<const std::uint32_t, kMarksPerSector> CSectorTable::MarksOf(std::size_t tableSector) const {
    return std::span(m_marks).subspan(tableSector * kMarksPerSector).first<kMarksPerSector>();
}

std::uint32_t CSectorTable::Take() {
    const auto find = [this] {
        const auto from = m_marks.begin() + static_cast<std::ptrdiff_t>(m_firstFree);
        m_firstFree = static_cast<std::size_t>(std::find(from, m_marks.end(), kFree) - m_marks.begin());
        return m_firstFree < m_marks.size();
    };
    if (!find()) {
        m_extend();
        find();
    }
    m_marks[m_firstFree] = kEndOfChain;
    return static_cast<std::uint32_t>(m_firstFree++);
}

void CSectorTable::Release(std::uint32_t first) {
    while (first != kEndOfChain) {
        m_firstFree = std::min(m_firstFree, std::size_t{first});
        first = std::exchange(m_marks[first], kFree);
    }
}

}  // namespace vxfileio::compound
