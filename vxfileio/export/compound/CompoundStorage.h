#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/export/compound/BlockWrites.h"
#include "vxfileio/export/compound/Directory.h"
#include "vxfileio/export/compound/SectorFile.h"
#include "vxfileio/export/compound/SectorTable.h"
#include "vxfileio/export/compound/StorageHeader.h"

namespace vxfileio::compound {

/// Creates a new compound file with named streams, which may be in storages as files are in folders.
///
/// Paths in the file have backslashes between names. A path that begins with a backslash starts at the root, any other
/// at the current storage. "." is the storage itself, ".." its parent; the root is its own parent. Each byte of a name
/// becomes one 16-bit unit. Names are case-sensitive.
///
/// The file on disk is complete after every operation; closing adds nothing. Sectors are allocated in ascending order,
/// so equal calls make equal files. Freed sectors are reused, but the file never shrinks. Existing compound files can't
/// be opened. Not thread-safe.
class CompoundStorage {
 public:
    /// @name Results
    /// They don't include disk failures; see `IsComplete`.
    /// @{
    static constexpr std::int32_t kSuccess = 1;
    static constexpr std::int32_t kNoName = -1;       ///< The path has no name.
    static constexpr std::int32_t kNoStorage = -2;    ///< A storage in the path doesn't exist.
    static constexpr std::int32_t kTooLarge = -3;     ///< The data exceeds 2 GiB, the maximum size of a stream.
    static constexpr std::int32_t kNoStream = -4;     ///< The stream doesn't exist.
    static constexpr std::int32_t kNameTooLong = -5;  ///< The name has 32 or more bytes.
    static constexpr std::int32_t kNameExists = -6;   ///< The storage already has an entry with this name.
    /// @}

    CompoundStorage();
    CompoundStorage(const CompoundStorage&) = delete;
    CompoundStorage& operator=(const CompoundStorage&) = delete;

    /// Closes any open file and creates a new one without streams, which replaces any file at the path. Always returns
    /// true: use `IsOpen` to check whether the file could be created. If not, all operations work as usual, but write
    /// nothing.
    bool Create(const std::string& path);

    /// The same in an empty file that the caller has opened for writing. The file must outlive its use and isn't
    /// closed.
    void CreateIn(helpers::CFile& file);

    /// Returns whether a file is open.
    bool IsOpen() const noexcept { return m_file.IsOpen(); }

    /// Returns whether the system accepted everything since `Create`.
    bool IsComplete() const noexcept { return m_isComplete; }

    /// Adds an empty stream, and missing storages of its path.
    std::int32_t MakeFile(const std::string& path);
    /// Adds an empty storage, and missing parents.
    std::int32_t MakeDirectory(const std::string& path);
    /// Sets the current storage. On failure it is unchanged.
    std::int32_t ChangeDirectory(const std::string& path);

    /// Replaces the content of a stream. Writes the data directly from the caller's buffer, and keeps a copy only if it
    /// has less than 4096 bytes.
    std::int32_t WriteFile(const std::string& path, helpers::CBytes data);

    /// Accepts the next piece of a stream's content. All pieces except the last must be multiples of 512 bytes.
    using TakePiece = std::function<void(helpers::CBytes piece)>;

    /// The same with `size` bytes in pieces. Calls `give(take)` once, unless the call is refused; `give` calls `take`
    /// for each piece. A piece is written before `take` returns; bytes beyond `size` are ignored. If `give` delivers
    /// too few bytes or throws, or memory runs out, `IsComplete` returns false until the stream is rewritten.
    std::int32_t WriteFile(const std::string& path, std::size_t size,
                           const std::function<void(const TakePiece& take)>& give);

    /// Closes the file.
    void Close();

 private:
    void Begin(bool isOpen);
    std::int32_t Make(std::string_view path, vxfileio::compound::EEntryType type);
    DirectoryNode* StartOf(std::string_view path) const;

    void FitStream(DirectoryEntry& entry, std::size_t size, bool isBig);
    void FitMiniStream(DirectoryEntry& entry, std::size_t size);
    std::uint32_t CopyToMiniStream(std::uint32_t miniSector, helpers::CBytes data);

    void ExtendFat();
    void ExtendMiniFat();

    void Write(vxfileio::compound::CBlockWrites& writes);
    void WriteTables();
    std::uint32_t WritePiece(vxfileio::compound::CBlockWrites& writes, std::uint32_t sector, helpers::CBytes piece);
    void AddTables(vxfileio::compound::CBlockWrites& writes);
    void AddFat(vxfileio::compound::CBlockWrites& writes) const;
    void AddDifat(vxfileio::compound::CBlockWrites& writes) const;
    void AddMiniFat(vxfileio::compound::CBlockWrites& writes) const;
    std::uint32_t AddChain(vxfileio::compound::CBlockWrites& writes, std::uint32_t sector, helpers::CBytes bytes) const;

    SectorFile m_file;
    StorageHeader m_header;
    vxfileio::compound::CSectorTable m_fat;
    vxfileio::compound::CSectorTable m_miniFat;
    vxfileio::compound::CDirectory m_directory;
    DirectoryNode* m_current = nullptr;
    std::vector<std::byte> m_miniStream;  ///< The content of all short streams, as in the file.
    bool m_isComplete = false;
};

}  // namespace vxfileio::compound
