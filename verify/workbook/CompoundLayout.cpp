#include "verify/workbook/CompoundLayout.h"

#include <algorithm>
#include <numeric>

#include "vxfileio/export/compound/DirectoryEntry.h"
#include "vxfileio/helpers/FieldVisitors.h"

using vxfileio::compound::DirectoryEntry;

using namespace vxfileio::compound;

namespace vxfile {

namespace {

constexpr std::uint32_t Count(std::uint64_t bytes, std::size_t unit) {
    return static_cast<std::uint32_t>((bytes + unit - 1) / unit);
}

/// Each sector of the FAT is the first of the sectors whose marks it holds.
bool IsFatSector(std::size_t sector) { return sector % kMarksPerSector == 0; }

/// A sector of the DIFAT follows the first FAT sector that it lists.
bool IsDifatSector(std::size_t sector) {
    const std::size_t fatSector = sector / kMarksPerSector;
    return sector % kMarksPerSector == 1 && fatSector >= kDifatEntriesInHeader &&
           (fatSector - kDifatEntriesInHeader) % kDifatEntriesPerSector == 0;
}

}  // namespace

CCompoundLayout::CCompoundLayout(std::uint32_t streamSize) {
    std::vector<std::uint32_t> directory;
    Append(directory);
    DirectoryEntry root(EEntryType::Root, "Root Entry");
    DirectoryEntry stream(EEntryType::Stream, "Workbook");
    const bool isBig = streamSize >= kMiniStreamCutOff;
    isBig ? LayOutStream(streamSize) : LayOutMiniStream(streamSize);
    root.child = 1;
    stream.streamSize = streamSize;
    if (!m_stream.empty()) (isBig ? stream : root).startSector = m_stream.front();
    if (!isBig && streamSize != 0) {
        stream.startSector = 0;
        root.streamSize = static_cast<std::uint32_t>(Count(streamSize, kMiniSectorSize) * kMiniSectorSize);
    }
    m_directory.resize(kSectorSize);
    vxfileio::helpers::CFieldStore store(m_directory.data());
    store(root, stream);
    m_sectors = m_fat.size();
    m_fat.resize(m_fatSectors.size() * kMarksPerSector, kFree);
    FillHeader();
}

/// Returns the next sector that isn't part of the FAT or the DIFAT.
std::uint32_t CCompoundLayout::Take() {
    for (;; m_fat.push_back(IsFatSector(m_fat.size()) ? kFatSector : kDifatSector)) {
        const auto sector = static_cast<std::uint32_t>(m_fat.size());
        if (IsFatSector(sector)) {
            m_fatSectors.push_back(sector);
        } else if (IsDifatSector(sector)) {
            m_difatSectors.push_back(sector);
        } else {
            m_fat.push_back(kEndOfChain);
            return sector;
        }
    }
}

void CCompoundLayout::Append(std::vector<std::uint32_t>& chain) {
    const std::uint32_t sector = Take();
    if (!chain.empty()) m_fat[chain.back()] = sector;
    chain.push_back(sector);
}

void CCompoundLayout::LayOutStream(std::uint32_t streamSize) {
    for (std::uint32_t i = Count(streamSize, kSectorSize); i > 0; --i)
        Append(m_stream);
}

/// The mini FAT follows the first sector of the mini stream.
void CCompoundLayout::LayOutMiniStream(std::uint32_t streamSize) {
    const std::uint32_t miniSectors = Count(streamSize, kMiniSectorSize);
    if (miniSectors == 0) return;
    Append(m_stream);
    m_header.firstMiniFatSector = Take();
    m_header.miniFatSectors = 1;
    while (m_stream.size() < Count(std::uint64_t{miniSectors} * kMiniSectorSize, kSectorSize))
        Append(m_stream);
    m_miniFat.assign(kMarksPerSector, kFree);
    std::iota(m_miniFat.begin(), m_miniFat.begin() + miniSectors, 1U);
    m_miniFat[miniSectors - 1] = kEndOfChain;
}

void CCompoundLayout::FillHeader() {
    m_header.fatSectors = static_cast<std::uint32_t>(m_fatSectors.size());
    const std::size_t inHeader = std::min(m_fatSectors.size(), m_header.difat.size());
    std::copy_n(m_fatSectors.begin(), inHeader, m_header.difat.begin());
    m_header.difatSectors = static_cast<std::uint32_t>(m_difatSectors.size());
    if (!m_difatSectors.empty()) m_header.firstDifatSector = m_difatSectors.front();
}

std::vector<std::uint32_t> CCompoundLayout::Difat(std::size_t index) const {
    std::vector<std::uint32_t> marks(kMarksPerSector, kFree);
    const std::size_t first = kDifatEntriesInHeader + index * kDifatEntriesPerSector;
    const std::size_t end = std::min(first + kDifatEntriesPerSector, m_fatSectors.size());
    std::copy(m_fatSectors.begin() + static_cast<std::ptrdiff_t>(first),
              m_fatSectors.begin() + static_cast<std::ptrdiff_t>(end), marks.begin());
    marks.back() = index + 1 < m_difatSectors.size() ? m_difatSectors[index + 1] : kEndOfChain;
    return marks;
}

}  // namespace vxfile
