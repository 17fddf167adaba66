#include "verify/workbook/CompoundScan.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "vxfileio/helpers/FieldVisitors.h"

using namespace vxfileio::compound;
using vxfileio::helpers::CFieldLoad;

namespace vxfile {

namespace {

using CMarks = std::array<std::uint32_t, kMarksPerSector>;

/// Loads an object, such as a header or the marks of a sector. Fields after the end keep their values.
template <class Object>
Object Load(std::span<const std::byte> bytes) {
    Object object{};
    CFieldLoad load(bytes);
    load(object);
    return object;
}

}  // namespace

CCompoundScan::CCompoundScan(const std::string& path) : m_path(path) {
    OpenInput(m_file, path);
    m_size = m_file.Size();
    m_header = Load<StorageHeader>(Block(0));
    ReadFat();
    ReadStream();
}

std::vector<std::byte> CCompoundScan::Block(std::uint64_t block) const {
    std::vector<std::byte> bytes(kSectorSize);
    m_file.ReadUpTo(static_cast<std::int64_t>(block * kSectorSize), bytes);
    return bytes;
}

/// The list of FAT sectors begins in the header and continues in the DIFAT.
void CCompoundScan::ReadFat() {
    const auto sectors = static_cast<std::uint64_t>(m_size) / kSectorSize;
    std::vector<std::uint32_t> difat(m_header.difat.begin(), m_header.difat.end());
    for (std::uint32_t next = m_header.firstDifatSector; next < sectors && difat.size() <= sectors;) {
        const auto marks = Load<CMarks>(Block(next + std::uint64_t{1}));
        difat.insert(difat.end(), marks.begin(), marks.end() - 1);
        next = marks.back();
    }
    for (const std::uint32_t sector : difat) {
        if (sector >= sectors || m_fat.size() > sectors) break;
        const auto marks = Load<CMarks>(Block(sector + std::uint64_t{1}));
        m_fat.insert(m_fat.end(), marks.begin(), marks.end());
    }
}

void CCompoundScan::ReadStream() {
    const DirectoryEntry wanted(EEntryType::Stream, "Workbook");
    const auto bytes = ReadChain(m_header.firstDirectorySector, kSectorSize);
    const auto entries = Load<std::array<DirectoryEntry, kSectorSize / kDirectoryEntrySize>>(bytes);
    m_root = entries.front();
    const auto* const found = std::find_if(entries.begin() + 1, entries.end(),
                                           [&](const DirectoryEntry& entry) { return entry.name == wanted.name; });
    if (found != entries.end()) {
        const std::uint32_t first = found->startSector;
        const std::uint32_t size = found->streamSize;
        m_stream = size < kMiniStreamCutOff ? ReadMiniChain(first, size) : ReadChain(first, size);
        return;
    }
    throw CFailure(m_path + " has no stream 'Workbook'; another program wrote it, or it is damaged.");
}

std::vector<std::byte> CCompoundScan::ReadChain(std::uint32_t first, std::uint64_t size) const {
    const std::uint64_t count = (size + kSectorSize - 1) / kSectorSize;
    if (size > static_cast<std::uint64_t>(m_size))
        throw CFailure(m_path + " has a stream longer than the file; it was cut or is damaged.");
    std::vector<std::byte> bytes;
    bytes.reserve(count * kSectorSize);
    for (std::uint32_t sector = first; bytes.size() < size; sector = m_fat[sector]) {
        const auto end = static_cast<std::int64_t>((sector + std::uint64_t{1}) * kSectorSize);
        if (sector >= m_fat.size() || end >= m_size)
            throw CFailure(m_path + " has a chain of sectors that leaves the file; it was cut or is damaged.");
        const auto block = Block(sector + std::uint64_t{1});
        bytes.insert(bytes.end(), block.begin(), block.end());
    }
    bytes.resize(size);
    return bytes;
}

/// Short streams are parts of the root's stream, eight mini sectors to a sector.
std::vector<std::byte> CCompoundScan::ReadMiniChain(std::uint32_t first, std::uint32_t size) const {
    const auto miniStream = ReadChain(m_root.startSector, m_root.streamSize);
    const std::uint64_t tableSize = std::uint64_t{m_header.miniFatSectors} * kSectorSize;
    const auto miniFat = Load<std::vector<std::uint32_t>>(ReadChain(m_header.firstMiniFatSector, tableSize));
    std::vector<std::byte> bytes;
    for (std::uint32_t sector = first; bytes.size() < size; sector = miniFat[sector]) {
        const std::size_t begin = std::size_t{sector} * kMiniSectorSize;
        if (sector >= miniFat.size() || begin + kMiniSectorSize > miniStream.size())
            throw CFailure(m_path +
                           " has a chain of mini sectors that leaves the mini stream; it was cut or is damaged.");
        const auto part = std::span(miniStream).subspan(begin, kMiniSectorSize);
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace vxfile
