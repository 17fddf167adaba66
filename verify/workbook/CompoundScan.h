#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/export/compound/DirectoryEntry.h"
#include "vxfileio/export/compound/StorageHeader.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// A compound file with its tables and its one stream, followed from sector to sector as spreadsheet programs do. Sizes
/// in the tables are checked against the size of the file before memory is allocated.
class CCompoundScan {
 public:
    /// Throws `CFailure` if the file can't be opened, or its tables don't describe a complete stream `Workbook`.
    explicit CCompoundScan(const std::string& path);

    std::int64_t Size() const { return m_size; }
    /// Returns the bytes of one block: block 0 is the header, sector n is block n + 1. Bytes after the end of the file
    /// are zeros.
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
