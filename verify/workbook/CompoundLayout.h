#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vxfileio/export/compound/StorageHeader.h"

namespace vxfile {

/// The compound file around a stream of a given size. Writers take sectors in ascending order, so the size alone
/// determines the content of all tables.
class CCompoundLayout {
 public:
    explicit CCompoundLayout(std::uint32_t streamSize);

    const vxfileio::compound::StorageHeader& Header() const { return m_header; }
    /// The marks of all sectors, up to the end of the last sector of the FAT.
    const std::vector<std::uint32_t>& Fat() const { return m_fat; }
    /// The marks of the mini sectors, as many as the mini FAT has; empty without one.
    const std::vector<std::uint32_t>& MiniFat() const { return m_miniFat; }
    /// The numbers of the FAT sectors that one sector of the DIFAT lists, and that of the next DIFAT sector.
    std::vector<std::uint32_t> Difat(std::size_t index) const;
    /// The bytes of the directory.
    const std::vector<std::byte>& Directory() const { return m_directory; }

    /// The sectors that hold the stream, in its order.
    const std::vector<std::uint32_t>& StreamSectors() const { return m_stream; }
    const std::vector<std::uint32_t>& FatSectors() const { return m_fatSectors; }
    const std::vector<std::uint32_t>& DifatSectors() const { return m_difatSectors; }
    /// The number of sectors of the file.
    std::uint64_t Sectors() const { return m_sectors; }

 private:
    std::uint32_t Take();
    void Append(std::vector<std::uint32_t>& chain);
    void LayOutStream(std::uint32_t streamSize);
    void LayOutMiniStream(std::uint32_t streamSize);
    void FillHeader();

    vxfileio::compound::StorageHeader m_header;
    std::vector<std::uint32_t> m_fat;
    std::vector<std::uint32_t> m_miniFat;
    std::vector<std::byte> m_directory;
    std::vector<std::uint32_t> m_stream;
    std::vector<std::uint32_t> m_fatSectors;
    std::vector<std::uint32_t> m_difatSectors;
    std::uint64_t m_sectors = 0;
};

}  // namespace vxfile
