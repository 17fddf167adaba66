#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "tools/vxfile/system/FileBlocks.h"
#include "tools/vxfile/system/FileSha256.h"
#include "tools/vxfile/system/Xxh3.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// The checksums of a file: the XXH3-128 of each part, and the SHA-256 of the whole file. A second thread starts on the
/// latter in the constructor.
class CFileDigest {
 public:
    /// Uses the first `size` bytes of a file, which must outlive this object. `path` is its name in messages.
    CFileDigest(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size)
        : m_sha256(file, path, size), m_blocks(file, std::move(path), size) {}

    /// Returns the XXH3-128 of the next `length` bytes. Requires: the first `size` bytes include them. Throws
    /// `CFailure` if they can't be read, and `CInterruption` after Ctrl-C.
    CXxh3Sum HashNext(std::int64_t length);

    /// Returns the SHA-256 of all bytes as hexadecimal digits. Call it once. Throws as `HashNext` does.
    std::string Sha256() { return m_sha256.Take(); }

 private:
    CFileSha256 m_sha256;
    CFileBlocks m_blocks;
    std::span<const std::byte> m_ahead;  ///< What was read and not hashed yet.
    CXxh3 m_xxh3;
};

}  // namespace vxfile
