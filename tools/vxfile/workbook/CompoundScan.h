#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/export/compound/DirectoryEntry.h"
#include "vxfileio/export/compound/StorageHeader.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// A compound file with its tables and its one stream, followed from sector to sector as spreadsheet programs do. What
/// the tables claim is held against the size of the file before anything is made room for.
class CCompoundScan {
 public:
    /// Throws `CFailure` if the file can't be opened, or its tables lead to no whole stream `Workbook`.
    explicit CCompoundScan(const std::string& path);

    std::int64_t Size() const { return m_size; }
    /// The bytes of one block: 0 is the header, sector n is block n + 1. Bytes after the end of the file are zeros.
    std::vector<std::byte> Block(std::uint64_t block) const;
    /// The bytes of the stream.
    const std::vector<std::byte>& Stream() const { return m_stream; }

 private:
    void ReadFat();
    void ReadStream();
    std::vector<std::byte> ReadChain(std::uint32_t first, std::uint64_t size) const;
    std::vector<std::byte> ReadMiniChain(std::uint32_t first, std::uint32_t size) const;

    std::string m_path;
    vxfileio::helpers::CFile m_file;
    std::int64_t m_size = 0;
    vxfileio::compound::StorageHeader m_header;
    std::vector<std::uint32_t> m_fat;
    vxfileio::compound::DirectoryEntry m_root;
    std::vector<std::byte> m_stream;
};

}  // namespace vxfile
