#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/HeaderWindow.h"
#include "vxfileio/rawdata/Layout.h"

namespace vxfileio::rawdata {

/// Reads the recording headers of one file, one after the other along their chain. Headers that lie close together are
/// read together, and lists of channels that are the same as in the header before aren't parsed again.
class CRecordingHdrReader {
 public:
    /// `layout` is that of the file. The caller owns the file, which must outlive this object.
    CRecordingHdrReader(const helpers::CFile& file, const CLayout& layout)
        : m_layout(layout), m_window(file, layout.recording.size) {}

    /// Reads a header whose positions are reliable. Returns false if there is no whole header at the position.
    ///
    /// A writer rewrites positions in place, so they may be partly old and partly new while it does. Positions that our
    /// writer wouldn't leave are read again until they are stable.
    bool Read(std::int64_t position, CRawDataRecordingHdr& header);

    /// The same, but from the current content of the file. Discards what was read before.
    bool Reread(std::int64_t position, CRawDataRecordingHdr& header);

    /// How often a header is read again because its writer seems to be rewriting it. A rewrite takes microseconds.
    static constexpr int kMostRereads = 100;

 private:
    bool ReadOnce(std::int64_t position, CRawDataRecordingHdr& header);
    bool TakeChannels(std::string_view hdr, CRawDataRecordingHdr& header);
    bool LooksSettled(std::int64_t position, const CRawDataRecordingHdr& header) const;

    const CLayout& m_layout;
    CHeaderWindow m_window;
    std::string m_channelBytes;       ///< The channel cells that were parsed last.
    CRawDataRecordingHdr m_channels;  ///< The result of parsing them.
};

}  // namespace vxfileio::rawdata
