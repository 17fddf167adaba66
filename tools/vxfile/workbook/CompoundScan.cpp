#include "tools/vxfile/workbook/CompoundScan.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/OpenInput.h"
#include "vxfileio/export/compound/CompoundFormat.h"
#include "vxfileio/export/compound/DirectoryEntry.h"
#include "vxfileio/helpers/FieldVisitors.h"
#include "vxfileio/helpers/LittleEndian.h"

using vxfileio::compound::DirectoryEntry;

using namespace vxfileio::compound;
using vxfileio::helpers::LoadLE32;

namespace vxfile {

namespace {

/// @name Where fields stand
/// In the header and in a directory entry.
/// @{
constexpr std::size_t kFirstDirectorySector = 48;
constexpr std::size_t kFirstMiniFatSector = 60;
constexpr std::size_t kMiniFatSectors = 64;
constexpr std::size_t kFirstDifatSector = 68;
constexpr std::size_t kDifat = 76;
constexpr std::size_t kEntryStart = 116;
constexpr std::size_t kEntrySize = 120;
/// @}

std::vector<std::uint32_t> Marks(std::span<const std::byte> bytes) {
    std::vector<std::uint32_t> marks;
    for (std::size_t i = 0; i + sizeof(std::uint32_t) <= bytes.size(); i += sizeof(std::uint32_t))
        marks.push_back(LoadLE32(&bytes[i]));
    return marks;
}

}  // namespace

CCompoundScan::CCompoundScan(const std::string& path) : m_path(path) {
    OpenInput(m_file, path);
    m_size = m_file.Size();
    m_header = Block(0);
    ReadFat();
    ReadStream();
}

std::vector<std::byte> CCompoundScan::Block(std::uint64_t block) const {
    std::vector<std::byte> bytes(kSectorSize);
    m_file.ReadUpTo(static_cast<std::int64_t>(block * kSectorSize), bytes);
    return bytes;
}

std::uint32_t CCompoundScan::Field(std::size_t offset) const { return LoadLE32(&m_header[offset]); }

/// The list of the FAT's sectors stands in the header, and goes on in sectors of its own.
void CCompoundScan::ReadFat() {
    const auto sectors = static_cast<std::uint64_t>(m_size) / kSectorSize;
    std::vector<std::uint32_t> difat = Marks(std::span(m_header).subspan(kDifat));
    for (std::uint32_t next = Field(kFirstDifatSector); next < sectors && difat.size() <= sectors;) {
        const auto marks = Marks(Block(next + std::uint64_t{1}));
        difat.insert(difat.end(), marks.begin(), marks.end() - 1);
        next = marks.back();
    }
    for (const std::uint32_t sector : difat) {
        if (sector >= sectors || m_fat.size() > sectors) break;
        const auto marks = Marks(Block(sector + std::uint64_t{1}));
        m_fat.insert(m_fat.end(), marks.begin(), marks.end());
    }
}

void CCompoundScan::ReadStream() {
    const DirectoryEntry wanted(enEntryType::Stream, "Workbook");
    std::vector<std::byte> name(kDirectoryEntrySize);
    vxfileio::helpers::FieldStore(name.data())(wanted.name);
    m_root = ReadChain(Field(kFirstDirectorySector), kSectorSize);
    for (std::size_t at = kDirectoryEntrySize; at < kSectorSize; at += kDirectoryEntrySize) {
        const auto entry = std::span(m_root).subspan(at, kDirectoryEntrySize);
        if (!std::equal(entry.begin(), entry.begin() + 2 * kNameUnits, name.begin())) continue;
        const std::uint32_t first = LoadLE32(&entry[kEntryStart]);
        const std::uint32_t size = LoadLE32(&entry[kEntrySize]);
        m_stream = size < kMiniStreamCutOff ? ReadMiniChain(first, size) : ReadChain(first, size);
        return;
    }
    throw CFailure(m_path + " has no stream 'Workbook'; it is a compound file of another program, or damaged.");
}

std::vector<std::byte> CCompoundScan::ReadChain(std::uint32_t first, std::uint64_t size) const {
    const std::uint64_t count = (size + kSectorSize - 1) / kSectorSize;
    if (size > static_cast<std::uint64_t>(m_size))
        throw CFailure(m_path + " claims a stream that is longer than the file; it was cut, or is damaged.");
    std::vector<std::byte> bytes;
    bytes.reserve(count * kSectorSize);
    for (std::uint32_t sector = first; bytes.size() < size; sector = m_fat[sector]) {
        const auto end = static_cast<std::int64_t>((sector + std::uint64_t{1}) * kSectorSize);
        if (sector >= m_fat.size() || end >= m_size)
            throw CFailure(m_path + " has a chain of sectors that leads out of the file; it was cut, or is damaged.");
        const auto block = Block(sector + std::uint64_t{1});
        bytes.insert(bytes.end(), block.begin(), block.end());
    }
    bytes.resize(size);
    return bytes;
}

/// Short streams stand in the stream of the root, whose sectors are cut in eight.
std::vector<std::byte> CCompoundScan::ReadMiniChain(std::uint32_t first, std::uint32_t size) const {
    const auto miniStream = ReadChain(LoadLE32(&m_root[kEntryStart]), LoadLE32(&m_root[kEntrySize]));
    const std::uint64_t tableSize = std::uint64_t{Field(kMiniFatSectors)} * kSectorSize;
    const auto miniFat = Marks(ReadChain(Field(kFirstMiniFatSector), tableSize));
    std::vector<std::byte> bytes;
    for (std::uint32_t sector = first; bytes.size() < size; sector = miniFat[sector]) {
        const std::size_t begin = std::size_t{sector} * kMiniSectorSize;
        if (sector >= miniFat.size() || begin + kMiniSectorSize > miniStream.size())
            throw CFailure(m_path + " has a chain of mini sectors that leads nowhere; it was cut, or is damaged.");
        const auto part = std::span(miniStream).subspan(begin, kMiniSectorSize);
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace vxfile
