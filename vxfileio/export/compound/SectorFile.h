#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "vxfileio/export/compound/CompoundFormat.h"
#include "vxfileio/helpers/File.h"

namespace vxfileio::compound {

/// A file seen as blocks of 512 bytes, numbered from 0. Nothing throws; operations return false on failure.
class SectorFile {
 public:
    /// @name Modes, to be added up
    /// @{
    static constexpr std::uint32_t kRead = 1;
    static constexpr std::uint32_t kWrite = 2;
    /// @}
    static constexpr std::size_t kBlockSize = vxfileio::compound::kSectorSize;

    /// Makes a new file, or empties an existing one, and opens it for reading and writing; closes what was open.
    bool Create(const std::string& path);
    /// Opens an existing file; closes what was open. Others may use the file too. A mode without any bit fails.
    bool Open(const std::string& path, std::uint32_t mode);
    /// Writes to a file that the caller opened for writing, which must outlive its use here; closes what was open.
    void Use(helpers::CFile& file);
    /// Closes the file, unless it is the caller's. Without an open file it does nothing.
    void Close();
    /// Returns whether a file is open.
    bool IsOpen() const noexcept { return m_file->IsOpen(); }

    /// Returns the number of blocks; the last one may be cut short by the end of the file.
    std::uint32_t BlockCount() const { return m_blockCount; }
    /// Returns the bytes of the file, without gaps that blocks beyond the end have left in front of them.
    std::uint64_t ByteSize() const { return m_byteSize; }

    /// Reads one block. False if there is no such block, or if the file ends inside it.
    bool Read(std::uint32_t index, std::span<std::byte, kBlockSize> buffer) const;

    /// Writes one block, then closes the file and opens it anew in the same mode, so that everybody sees the block.
    /// Returns whether the file is open, not whether the disk took the block.
    bool Write(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer);

    /// The most pieces that one run is written from.
    static constexpr std::size_t kMostParts = 4;

    /// Writes blocks side by side from `index` on, at once. The parts, up to `kMostParts` of them, are whole blocks
    /// each. True means that all of it is with the system.
    bool WriteRun(std::uint32_t index, std::span<const helpers::CBytes> parts);

    /// Writes a block between others, so that those from `index` on move up by one. An index beyond the end is a plain
    /// `Write`.
    bool Insert(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer);
    /// Exchanges two blocks.
    bool Swap(std::uint32_t a, std::uint32_t b);
    /// Brings a block to another place. Those between move by one towards where it was.
    bool Move(std::uint32_t from, std::uint32_t to);

 private:
    bool HasMode(std::uint32_t mode) const { return IsOpen() && (m_mode & mode) != 0; }
    bool OpenInMode();
    void CountWritten(std::uint32_t index, std::size_t blocks);

    std::string m_path;
    helpers::CFile m_own;
    helpers::CFile* m_file = &m_own;
    std::uint32_t m_mode = 0;
    std::uint32_t m_blockCount = 0;
    std::uint64_t m_byteSize = 0;
};

}  // namespace vxfileio::compound
