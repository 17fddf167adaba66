#include "vxfileio/rawdata/RecordingHdrReader.h"

#include <algorithm>
#include <span>
#include <utility>

#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfileio::rawdata {

namespace {

/// What is read at once where headers lie close together.
constexpr std::size_t kBlock = std::size_t{32} << 10;

/// How far apart two headers may begin for the later ones to be read along. At this distance, copying what lies between
/// them costs about as much as the calls that are saved.
constexpr std::int64_t kNear = std::int64_t{8} << 10;

}  // namespace

bool CRecordingHdrReader::Read(std::int64_t position, CRawDataRecordingHdr& header) {
    if (!ReadOnce(position, header)) return false;
    for (int rereads = 0; rereads < kMostRereads && !LooksSettled(position, header); ++rereads) {
        CRawDataRecordingHdr again;
        m_blockSize = 0;
        if (!ReadOnce(position, again)) return false;
        const bool stays = again.FPosRecordingData == header.FPosRecordingData &&
                           again.FPosNextRecordingHdr == header.FPosNextRecordingHdr;
        header = std::move(again);
        if (stays) break;
    }
    return true;
}

bool CRecordingHdrReader::Reread(std::int64_t position, CRawDataRecordingHdr& header) {
    m_blockSize = 0;
    return Read(position, header);
}

bool CRecordingHdrReader::ReadOnce(std::int64_t position, CRawDataRecordingHdr& header) {
    const std::string_view bytes = HdrAt(position);
    if (!m_layout.recording.Begins(bytes)) return false;
    DecodeAllButChannels(m_layout, bytes, header);
    return TakeChannels(bytes, header);
}

/// Returns the bytes of the header at the position, with zeros beyond the end of the file; none if its first cell isn't
/// whole. They live until the next call.
std::string_view CRecordingHdrReader::HdrAt(std::int64_t position) {
    // Of two positions that may be any numbers, only those of the same sign have a difference.
    const bool near = m_lastPosition >= 0 && position > m_lastPosition && position - m_lastPosition <= kNear;
    m_lastPosition = position;
    // Only forwards: a writer points to a later header once that is whole, so bytes read after the position are
    // as new as the position itself.
    const auto place = near ? static_cast<std::size_t>(position - m_blockPosition) : 0;
    if (near && place + m_hdrSize <= m_blockSize) return {m_block.data() + place, m_hdrSize};
    m_block.resize(std::max(near ? kBlock : m_hdrSize, m_block.size()));
    const auto room = std::span(m_block).first(near ? kBlock : m_hdrSize);
    m_blockPosition = position;
    m_blockSize = m_file.ReadUpTo(position, std::as_writable_bytes(room));
    if (m_blockSize < m_layout.recording.cells.front().width) return {};
    if (m_blockSize < m_hdrSize) std::ranges::fill(room.subspan(m_blockSize, m_hdrSize - m_blockSize), '\0');
    return {m_block.data(), m_hdrSize};
}

/// `hdr` is the whole header. Returns false if it claims more channels than it can list.
bool CRecordingHdrReader::TakeChannels(std::string_view hdr, CRawDataRecordingHdr& header) {
    const std::string_view bytes = ChannelBytes(m_layout, hdr);
    if (bytes == m_channelBytes) {
        header.WellChannels = m_channels.WellChannels;
        header.AuxChannels = m_channels.AuxChannels;
        return true;
    }
    m_channelBytes.clear();
    if (!DecodeChannels(m_layout, hdr, header)) return false;
    m_channelBytes = bytes;
    m_channels.WellChannels = header.WellChannels;
    m_channels.AuxChannels = header.AuxChannels;
    return true;
}

/// Returns whether the positions are as a writer leaves them: unset, or the data directly after the header and the next
/// header after that.
bool CRecordingHdrReader::LooksSettled(std::int64_t position, const CRawDataRecordingHdr& header) const {
    const auto size = static_cast<std::int64_t>(m_hdrSize);
    const std::int64_t next = header.FPosNextRecordingHdr;
    if (header.FPosRecordingData == kUnset) return next == kUnset;
    return header.FPosRecordingData == position + size && (next == kUnset || next >= position + size);
}

}  // namespace vxfileio::rawdata
