#include "tools/vxfile/recover/RecoveredFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "tools/vxfile/io/Failure.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;
using vxfileio::CFile;
using vxfileio::CNumberText;

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

constexpr std::int64_t kSampleSize = sizeof(std::uint16_t);

void SetPosition(std::string& header, const CCellPlace& place, std::int64_t position) {
    EncodeCell(place, CNumberText(position).View(), std::span(header).subspan(place.offset, place.width));
}

std::int64_t BytesOf(const CFoundSegment& segment) {
    return static_cast<std::int64_t>(kSegmentHdrSize) + kSampleSize * segment.samples;
}

/// Returns the header of a segment as the new file has it, but for where the next one stands.
CSegmentHdr HeaderOf(const CFoundSegment& segment, const CInventory& inventory, const CFile& source) {
    std::array<char, kSegmentHdrSize> bytes{};
    source.ReadUpTo(segment.position, std::as_writable_bytes(std::span(bytes)));
    CSegmentHdr header;
    Decode({bytes.data(), bytes.size()}, header);
    header.Size = segment.samples;
    if (segment.cut) {
        const auto& wells = inventory.recordings[segment.recording].header.WellChannels;
        const auto well = std::ranges::find(wells, segment.wellID, &CRawDataChannelInfo::ID);
        header.TimeTo = header.TimeFrom + (header.Size - 1) * (well == wells.end() ? 0 : well->Ticks);
    }
    return header;
}

/// Copies header by header and block by block.
class CCopy {
 public:
    CCopy(const CInventory& inventory, const CFile& source, const std::string& path, const CTellSegment& tell)
        : m_inventory(inventory),
          m_source(source),
          m_tell(tell),
          m_block(kBlockSize),
          m_segment(inventory.segments.begin()) {
        if (!m_file.Create(path))
            throw CFailure("Can't create a file there: " + m_file.Failure().error.message() + ".");
    }

    void PutFileHdr(std::string bytes) {
        const bool any = !m_inventory.recordings.empty();
        SetPosition(bytes, PlaceOf(kFileCells, "FPosFirstRecordingHdr"),
                    any ? static_cast<std::int64_t>(kFileHdrSize) : kUnset);
        Append(std::as_bytes(std::span(bytes)), {});
    }

    void PutRecording(std::string bytes, std::uint32_t recording) {
        const std::int64_t data = m_file.End() + static_cast<std::int64_t>(bytes.size());
        const auto end = std::find_if(m_segment, m_inventory.segments.end(),
                                      [&](const auto& segment) { return segment.recording != recording; });
        std::int64_t next = data;
        for (auto segment = m_segment; segment != end; ++segment)
            next += BytesOf(*segment);
        const bool isLast = recording + 1 == m_inventory.recordings.size();
        SetPosition(bytes, PlaceOf(kRecordingCells, "FPosRecordingData"), data);
        SetPosition(bytes, PlaceOf(kRecordingCells, "FPosRecordingTrailer"), kUnset);
        SetPosition(bytes, PlaceOf(kRecordingCells, "FPosNextRecordingHdr"), isLast ? kUnset : next);
        Append(std::as_bytes(std::span(bytes)), {});
        for (; m_segment != end; ++m_segment)
            PutSegment(*m_segment, m_segment + 1 == end);
    }

    /// Returns the size of the file.
    std::int64_t Close() {
        if (!m_file.Close()) throw CFailure("The system couldn't keep all of the new file; make room and try again.");
        return m_file.End();
    }

 private:
    void PutSegment(const CFoundSegment& segment, bool isLast) {
        CSegmentHdr header = HeaderOf(segment, m_inventory, m_source);
        header.FPosNextSegmentHdr = isLast ? kUnset : m_file.End() + BytesOf(segment);
        std::array<char, kSegmentHdrSize> bytes{};
        Encode(header, bytes);
        vxfileio::CBytes headerBytes = std::as_bytes(std::span(bytes));
        std::int64_t from = segment.position + static_cast<std::int64_t>(kSegmentHdrSize);
        for (std::int64_t left = kSampleSize * segment.samples; left > 0;) {
            const auto part = std::span(m_block).first(
                static_cast<std::size_t>(std::min(left, static_cast<std::int64_t>(kBlockSize))));
            if (m_source.ReadUpTo(from, part) != part.size())
                throw CFailure("The file can't be read any more at byte " + std::to_string(from) + "; copy it first.");
            Append(headerBytes, part);
            headerBytes = {};
            from += static_cast<std::int64_t>(part.size());
            left -= static_cast<std::int64_t>(part.size());
        }
        m_tell(segment, header, m_file.End());
    }

    void Append(vxfileio::CBytes first, vxfileio::CBytes second) {
        if (!m_file.Append({first, second}))
            throw CFailure("The new file can't be written, most likely because the disk is full; make room.");
    }

    const CInventory& m_inventory;
    const CFile& m_source;
    const CTellSegment& m_tell;
    CFile m_file;
    std::vector<std::byte> m_block;
    std::vector<CFoundSegment>::const_iterator m_segment;  ///< The next one to be written.
};

}  // namespace

std::int64_t WriteRecovered(const CInventory& inventory, const CMendedFileHdr& fileHdr,
                            const std::vector<CMendedRecording>& recordings, const CFile& source,
                            const std::string& path, const CTellSegment& tell) {
    CCopy copy(inventory, source, path, tell);
    copy.PutFileHdr(fileHdr.bytes);
    for (std::uint32_t i = 0; i < recordings.size(); ++i)
        copy.PutRecording(recordings[i].bytes, i);
    return copy.Close();
}

}  // namespace vxfile
