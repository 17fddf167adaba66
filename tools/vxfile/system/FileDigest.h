#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <future>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/system/Sha256.h"
#include "tools/vxfile/system/Xxh3.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

/// The checksums of a file that is read once, from beginning to end: the XXH3-128 of each part, and the SHA-256 of the
/// whole file, which a second thread computes. Uses two blocks of memory.
class CFileDigest {
 public:
    /// Uses the first `size` bytes of a file, which must outlive this object. `path` is its name in messages.
    CFileDigest(const vxfileio::helpers::CFile& file, std::string path, std::int64_t size);
    ~CFileDigest();
    CFileDigest(const CFileDigest&) = delete;
    CFileDigest& operator=(const CFileDigest&) = delete;

    /// Returns the XXH3-128 of the next `length` bytes. Requires: the first `size` bytes include them. Throws
    /// `CFailure` if they can't be read, and `CInterruption` after Ctrl-C.
    CXxh3Sum HashNext(std::int64_t length);

    /// Returns the SHA-256 of all bytes as hexadecimal digits. No operation may follow. Requires: `HashNext` has
    /// processed all `size` bytes.
    std::string Sha256();

 private:
    void ReadBlock();

    static constexpr std::size_t kBlockSize = std::size_t{1} << 20;

    const vxfileio::helpers::CFile& m_file;
    std::string m_path;
    std::int64_t m_size;
    std::int64_t m_read = 0;                         ///< The number of bytes read so far.
    std::span<const std::byte> m_ahead;              ///< Those that haven't been hashed yet.
    std::array<std::vector<std::byte>, 2> m_blocks;  ///< The current block and the next one.
    CXxh3 m_xxh3;
    CSha256 m_sha256;
    std::future<void> m_adding;  ///< Adds a block to the SHA-256.
};

}  // namespace vxfile
