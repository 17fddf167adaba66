#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "vxfileio/helpers/File.h"

namespace vxfile {

/// A range of a file in memory, for reading the file from front to back: one system call serves many reads. Returned
/// views are valid until the next call.
class CFileWindow {
 public:
    static constexpr std::size_t kRoom = std::size_t{64} << 10;  ///< Bytes; small enough for the processor's cache.

    /// Keeps a reference to the file, which must outlive this object.
    explicit CFileWindow(const vxfileio::helpers::CFile& file) : m_file(file) {}

    /// Returns the bytes in memory from a position on: at least `least`, or up to the end of the file. If there are
    /// fewer, reads `ahead` bytes first, but no more than `kRoom`. Requires: `least` <= `ahead`.
    std::string_view BytesAt(std::int64_t position, std::size_t least, std::size_t ahead) {
        const std::int64_t offset = position - m_start;
        const auto size = static_cast<std::int64_t>(m_size);
        if (offset < 0 || offset + static_cast<std::int64_t>(least) > size) Read(position, ahead);
        const auto passed = static_cast<std::size_t>(position - m_start);
        return {m_room.get() + passed, m_size - passed};
    }

 private:
    void Read(std::int64_t position, std::size_t ahead) {
        const auto room = std::as_writable_bytes(std::span(m_room.get(), kRoom));
        m_start = position;
        m_size = m_file.ReadUpTo(position, room.first(std::min(ahead, kRoom)));
    }

    const vxfileio::helpers::CFile& m_file;
    std::unique_ptr<char[]> m_room = std::make_unique_for_overwrite<char[]>(kRoom);
    std::int64_t m_start = 0;  ///< The file offset of the bytes.
    std::size_t m_size = 0;    ///< The number of bytes.
};

}  // namespace vxfile
