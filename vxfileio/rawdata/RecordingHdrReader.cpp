#include "vxfileio/rawdata/RecordingHdrReader.h"

#include <utility>

#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfileio::rawdata {

bool CRecordingHdrReader::Read(std::int64_t position, CRawDataRecordingHdr& header) {
    if (!ReadOnce(position, header)) return false;
    for (int rereads = 0; rereads < kMostRereads && !LooksSettled(position, header); ++rereads) {
        CRawDataRecordingHdr again;
        m_window.Forget();
        if (!ReadOnce(position, again)) return false;
        const bool stays = again.FPosRecordingData == header.FPosRecordingData &&
                           again.FPosNextRecordingHdr == header.FPosNextRecordingHdr;
        header = std::move(again);
        if (stays) break;
    }
    return true;
}

bool CRecordingHdrReader::Reread(std::int64_t position, CRawDataRecordingHdr& header) {
    m_window.Forget();
    return Read(position, header);
}

bool CRecordingHdrReader::ReadOnce(std::int64_t position, CRawDataRecordingHdr& header) {
    const std::string_view bytes = m_window.HdrAt(position);
    if (!m_layout.recording.Begins(bytes)) return false;
    DecodeAllButChannels(m_layout, bytes, header);
    return TakeChannels(bytes, header);
}

/// `hdr` may be incomplete. Returns false if it claims more channels than it can list.
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
    const auto size = static_cast<std::int64_t>(m_layout.recording.size);
    const std::int64_t next = header.FPosNextRecordingHdr;
    if (header.FPosRecordingData == kUnset) return next == kUnset;
    return header.FPosRecordingData == position + size && (next == kUnset || next >= position + size);
}

}  // namespace vxfileio::rawdata
