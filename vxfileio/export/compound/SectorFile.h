#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "vxfileio/export/compound/CompoundFormat.h"
#include "vxfileio/helpers/File.h"

namespace vxfileio::compound {

/// A file as blocks of 512 bytes, numbered from 0. Never throws; operations return false on failure.
class SectorFile {
 public:
    /// @name Modes, which can be combined
    /// @{
    static constexpr std::uint32_t kRead = 1;
    static constexpr std::uint32_t kWrite = 2;
    /// @}
    static constexpr std::size_t kBlockSize = vxfileio::compound::kSectorSize;

    /// Creates a new file, or truncates an existing one, and opens it for reading and writing. Closes any open file.
    bool Create(const std::string& path);
    /// Opens an existing file, which others may use, too. Fails if no mode is set. Closes any open file.
    bool Open(const std::string& path, std::uint32_t mode);
    /// Uses a file that the caller has opened for writing, which must outlive its use. Closes any open file.
    void Use(helpers::CFile& file);
    /// Closes the file, unless it is the caller's. Does nothing if no file is open.
    void Close();
    /// Returns whether a file is open.
    bool IsOpen() const noexcept { return m_file->IsOpen(); }

    /// Returns the number of blocks; the last one may be incomplete.
    std::uint32_t BlockCount() const { return m_blockCount; }
    /// Returns the size of the file, without the gaps before blocks written beyond the end.
    std::uint64_t ByteSize() const { return m_byteSize; }

    /// Reads one block. Returns false if there is no such block or it is incomplete.
    bool Read(std::uint32_t index, std::span<std::byte, kBlockSize> buffer) const;

    /// Writes one block, then reopens the file in the same mode, so that everybody sees the block. Returns whether the
    /// file is open, not whether the block was written.
    bool Write(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer);

    /// The maximum number of parts in a run.
    static constexpr std::size_t kMostParts = 4;

    /// Writes adjacent blocks from `index` on in one call. Each of the parts, at most `kMostParts`, is a multiple of
    /// the block size. Returns whether the system accepted everything.
    bool WriteRun(std::uint32_t index, std::span<const helpers::CBytes> parts);

    /// Inserts a block at `index` and moves those from there on up by one. If `index` is beyond the end, this is
    /// `Write`.
    bool Insert(std::uint32_t index, std::span<const std::byte, kBlockSize> buffer);
    /// Exchanges two blocks.
    bool Swap(std::uint32_t a, std::uint32_t b);
    /// Moves a block to another index. Those between move by one.
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
