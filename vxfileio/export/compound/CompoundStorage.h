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

/// Makes a new compound file and keeps named streams in it, which may stand in storages as files do in folders.
///
/// Paths inside the file have backslashes between their names; one that begins with a backslash starts at the root, any
/// other at the current storage. "." and ".." are the storage itself and the one around it; around the root is the
/// root. Each byte of a name becomes one 16-bit unit, and names that differ in case only are different names.
///
/// The file on disk is whole after every operation, and closing it adds nothing. Sectors are taken in rising order, so
/// that equal calls make equal files; sectors given up are free again, but the file never becomes shorter. Existing
/// compound files can't be opened. One thread at a time.
class CompoundStorage {
 public:
    /// @name Results
    /// They don't include disk failures; see `IsComplete`.
    /// @{
    static constexpr std::int32_t kSuccess = 1;
    static constexpr std::int32_t kNoName = -1;       ///< The path holds no name.
    static constexpr std::int32_t kNoStorage = -2;    ///< A storage of the path doesn't exist.
    static constexpr std::int32_t kTooLarge = -3;     ///< The data is more than a stream holds, which is 2 GiB.
    static constexpr std::int32_t kNoStream = -4;     ///< The stream doesn't exist.
    static constexpr std::int32_t kNameTooLong = -5;  ///< The name has 32 or more bytes.
    static constexpr std::int32_t kNameExists = -6;   ///< The storage has an entry of that name already.
    /// @}

    CompoundStorage();
    CompoundStorage(const CompoundStorage&) = delete;
    CompoundStorage& operator=(const CompoundStorage&) = delete;

    /// Closes what is open and makes a new file without streams, in place of any file at the path. Always returns true:
    /// `IsOpen` returns whether the file could be created. If not, all operations work as usual, but write nothing.
    bool Create(const std::string& path);

    /// The same in an empty file that the caller opened for writing. It must outlive its use here, and isn't closed.
    void CreateIn(helpers::CFile& file);

    /// Returns whether a file is open.
    bool IsOpen() const noexcept { return m_file.IsOpen(); }

    /// Returns whether the system took everything since `Create`.
    bool IsComplete() const noexcept { return m_isComplete; }

    /// Adds an empty stream, and the storages of its path that don't exist.
    std::int32_t MakeFile(const std::string& path);
    /// Adds an empty storage, and those around it that don't exist.
    std::int32_t MakeDirectory(const std::string& path);
    /// Makes a storage the current one. A failure leaves the old one.
    std::int32_t ChangeDirectory(const std::string& path);

    /// Replaces the content of a stream. The data is written straight from the caller's buffer, and not kept unless it
    /// is less than 4096 bytes.
    std::int32_t WriteFile(const std::string& path, helpers::CBytes data);

    /// Takes the next piece of a stream's content. All pieces but the last fill whole sectors of 512 bytes.
    using TakePiece = std::function<void(helpers::CBytes piece)>;

    /// The same with `size` bytes that needn't stand in memory together: `give(take)` is called once, unless the call
    /// is refused, and calls `take` for one piece after the other. A piece goes to the system before `take` returns;
    /// what comes beyond `size` is left out. Where less comes, the stream isn't whole, as `IsComplete` tells, and where
    /// `give` throws, or memory is wanting, it isn't either, until it is written again.
    std::int32_t WriteFile(const std::string& path, std::size_t size,
                           const std::function<void(const TakePiece& take)>& give);

    /// Closes the file and forgets it.
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
