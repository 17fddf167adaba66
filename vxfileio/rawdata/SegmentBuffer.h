#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfileio::rawdata {

/// Room for one segment as it stands in the file, header and samples, so that one read fills both.
class CSegmentBuffer {
 public:
    /// Gives the buffer room for exactly so many samples. If it had other room before, its content is lost, and the old
    /// memory goes before the new comes, so that there is never more than one segment.
    void MakeRoomFor(std::uint32_t samples) {
        if (samples == m_count && m_room) return;
        m_room.reset();
        m_count = 0;
        m_room = std::make_unique_for_overwrite<std::uint16_t[]>(kHdrRoom + samples);
        m_count = samples;
    }

    /// How many samples there is room for.
    std::uint32_t Count() const { return m_count; }

    /// The samples; they live until there is other room.
    std::uint16_t* Samples() { return m_room.get() + kHdrRoom; }
    helpers::CMutableBytes SampleBytes() { return SegmentBytes().subspan(kSegmentHdrSize); }

    /// Header and samples. There is room for a header once `MakeRoomFor` was called.
    helpers::CMutableBytes SegmentBytes() {
        return std::as_writable_bytes(std::span(m_room.get(), kHdrRoom + m_count));
    }

    /// The header, as text.
    std::string_view Hdr() const { return {reinterpret_cast<const char*>(m_room.get()), kSegmentHdrSize}; }

 private:
    static constexpr std::size_t kHdrRoom = kSegmentHdrSize / sizeof(std::uint16_t);

    std::uint32_t m_count = 0;
    std::unique_ptr<std::uint16_t[]> m_room;
};

}  // namespace vxfileio::rawdata
