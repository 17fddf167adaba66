#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "vxfileio/helpers/File.h"

namespace vxfileio::rawdata {

/// Room for one segment as it is in the file, header and samples, so that one read fills both.
class CSegmentBuffer {
 public:
    /// Makes room for exactly this many samples after a header of this many bytes, which must be even. If the buffer
    /// had other room before, its content is lost, and the old memory is freed first, so that there is never more than
    /// one segment.
    void MakeRoomFor(std::uint32_t samples, std::size_t hdrSize) {
        if (samples == m_count && hdrSize == m_hdrSize && m_room) return;
        m_room.reset();
        m_count = 0;
        m_room = std::make_unique_for_overwrite<std::uint16_t[]>(hdrSize / sizeof(std::uint16_t) + samples);
        m_hdrSize = hdrSize;
        m_count = samples;
    }

    /// Returns the number of samples that there is room for.
    std::uint32_t Count() const noexcept { return m_count; }

    /// Returns the samples. They are valid until the next `MakeRoomFor` that changes the room.
    std::uint16_t* Samples() noexcept { return m_room.get() + m_hdrSize / sizeof(std::uint16_t); }
    helpers::CMutableBytes SampleBytes() noexcept { return SegmentBytes().subspan(m_hdrSize); }

    /// Returns header and samples. Requires: `MakeRoomFor` was called.
    helpers::CMutableBytes SegmentBytes() noexcept {
        return std::as_writable_bytes(std::span(m_room.get(), m_hdrSize / sizeof(std::uint16_t) + m_count));
    }

    /// Returns the header as text, or as much of it as `read` bytes of the segment hold.
    std::string_view Hdr(std::size_t read) const noexcept {
        return {reinterpret_cast<const char*>(m_room.get()), std::min(read, m_hdrSize)};
    }

 private:
    std::size_t m_hdrSize = 0;
    std::uint32_t m_count = 0;
    std::unique_ptr<std::uint16_t[]> m_room;
};

}  // namespace vxfileio::rawdata
