#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "vxfileio/helpers/File.h"

namespace vxfile {

/// Reads a file once, from beginning to end, in large blocks.
class CFileBlocks {
 public:
    static constexpr std::int64_t kSize = std::int64_t{1} << 20;

    /// Reads the first `size` bytes of a file, which must outlive this object. `path` is its name in messages.
    CFileBlocks(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size);

    /// Returns whether any of the bytes haven't been read yet.
    bool HasMore() const { return m_read < m_size; }

    /// Reads the next block, and returns it; it is valid until the next call. Throws `CFailure` if there is none or it
    /// can't be read, and `CInterruption` after Ctrl-C.
    std::span<const std::byte> Next();

 private:
    const vxfileio::helpers::CFile& m_file;
    std::string m_path;
    std::int64_t m_size;
    std::int64_t m_read = 0;  ///< The number of bytes read so far.
    std::vector<std::byte> m_block;
};

}  // namespace vxfile
