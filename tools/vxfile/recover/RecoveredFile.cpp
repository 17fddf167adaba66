#include "tools/vxfile/recover/RecoveredFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "tools/vxfile/system/Failure.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;
using vxfileio::helpers::CFile;
using vxfileio::helpers::CNumberText;

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

void SetPosition(std::string& header, const auto& cell, std::int64_t position) {
    EncodeCell(cell.key, position, std::span(header).subspan(cell.offset, cell.width));
}

/// Copies header by header and block by block.
class CCopy {
 public:
    CCopy(const CInventory& inventory, const CCopyFiles& files, const CTellSegment& tell)
        : m_inventory(inventory),
          m_files(files),
          m_tell(tell),
          m_block(kBlockSize),
          m_segment(inventory.segments.begin()) {
        if (!m_file.Create(files.work))
            throw CFailure("Can't create " + files.target + ": " + m_file.Failure().error.message() +
                           "; choose another folder.");
    }

    void PutFileHdr(std::string bytes) {
        const bool any = !m_inventory.recordings.empty();
        SetPosition(bytes, RecoveredLayout().file["FPosFirstRecordingHdr"],
                    any ? static_cast<std::int64_t>(kFileHdrSize) : kUnset);
        Append(std::as_bytes(std::span(bytes)), {});
    }

    void PutRecording(std::string bytes, std::uint32_t recording) {
        const std::int64_t data = m_file.End() + static_cast<std::int64_t>(bytes.size());
        const auto end = std::find_if(m_segment, m_inventory.segments.end(),
                                      [&](const auto& segment) { return segment.recording != recording; });
        std::int64_t next = data;
        for (auto segment = m_segment; segment != end; ++segment)
            next += segment->Bytes();
        const bool isLast = recording + 1 == m_inventory.recordings.size();
        const auto& hdr = RecoveredLayout().recording;
        SetPosition(bytes, hdr["FPosRecordingData"], data);
        SetPosition(bytes, hdr["FPosRecordingTrailer"], kUnset);
        SetPosition(bytes, hdr["FPosNextRecordingHdr"], isLast ? kUnset : next);
        Append(std::as_bytes(std::span(bytes)), {});
        for (; m_segment != end; ++m_segment)
            PutSegment(*m_segment, m_segment + 1 == end);
    }

    /// Returns the size of the file.
    std::int64_t Close() {
        if (!m_file.Close()) RefuseToWrite();
        return m_file.End();
    }

 private:
    void PutSegment(const CFoundSegment& segment, bool isLast) {
        const CSegmentHdr header{.ID = segment.wellID,
                                 .FPosNextSegmentHdr = isLast ? kUnset : m_file.End() + segment.Bytes(),
                                 .TimeFrom = segment.from,
                                 .TimeTo = segment.to,
                                 .Size = segment.samples};
        std::array<char, kSegmentHdrSize> bytes{};
        Encode(RecoveredLayout(), header, bytes);
        vxfileio::helpers::CBytes headerBytes = std::as_bytes(std::span(bytes));
        std::int64_t from = segment.Data();
        for (std::int64_t left = segment.End() - from; left > 0;) {
            const auto part = std::span(m_block).first(
                static_cast<std::size_t>(std::min(left, static_cast<std::int64_t>(kBlockSize))));
            if (m_files.source.ReadUpTo(from, part) != part.size())
                throw CFailure("Can't read " + m_files.sourcePath + " any more at byte " + std::to_string(from) +
                               "; copy it elsewhere, and recover the copy.");
            Append(headerBytes, part);
            headerBytes = {};
            from += static_cast<std::int64_t>(part.size());
            left -= static_cast<std::int64_t>(part.size());
        }
        m_tell(segment, m_file.End());
    }

    void Append(vxfileio::helpers::CBytes first, vxfileio::helpers::CBytes second) {
        if (!m_file.Append({first, second})) RefuseToWrite();
    }

    [[noreturn]] void RefuseToWrite() const {
        throw CFailure("Can't write " + m_files.target + ": " + m_file.Failure().error.message() +
                       "; make room, or write elsewhere.");
    }

    const CInventory& m_inventory;
    const CCopyFiles& m_files;
    const CTellSegment& m_tell;
    CFile m_file;
    std::vector<std::byte> m_block;
    std::vector<CFoundSegment>::const_iterator m_segment;  ///< The next one to be written.
};

}  // namespace

std::int64_t WriteRecovered(const CInventory& inventory, const CMendedFileHdr& fileHdr,
                            const std::vector<CMendedRecording>& recordings, const CCopyFiles& files,
                            const CTellSegment& tell) {
    CCopy copy(inventory, files, tell);
    copy.PutFileHdr(fileHdr.bytes);
    for (std::uint32_t i = 0; i < recordings.size(); ++i)
        copy.PutRecording(recordings[i].bytes, i);
    return copy.Close();
}

}  // namespace vxfile
