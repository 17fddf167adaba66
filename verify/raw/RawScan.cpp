#include "verify/raw/RawScan.h"

#include <algorithm>
#include <span>
#include <utility>

#include "recovery/Input.h"
#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "verify/Text.h"
#include "vxfileio/rawdata/HeaderCodec.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// Segments up to this size are read many at a time, even if only their headers are needed.
constexpr std::int64_t kShortSegment = 8 << 10;

std::int64_t OffsetOf(const auto& cell) { return static_cast<std::int64_t>(cell.offset); }

}  // namespace

CRawScan::CRawScan(const std::string& path) {
    OpenInput(m_file, path);
    m_size = m_openedSize = m_file.Size();
    if (m_size == 0) throw CFailure(path + " is empty; there is nothing to read or to recover.");
    const std::string bytes = ReadBytes(0, LargestFileHdr());
    if (!bytes.starts_with(kFileTypeText))
        throw CFailure(path +
                       " doesn't begin like a raw data file. Run 'vxfile info' to see what it is, or 'vxfile recover' "
                       "if its beginning is damaged.");
    m_layout = &LayoutOfFile(bytes);
    Decode(*m_layout, bytes, m_header);
    WalkRecordings();
    m_size = std::max(m_size, m_file.Size());
}

bool CRawScan::HasRecordingAt(std::int64_t position) const {
    const auto& hdr = m_layout->recording;
    return position >= 0 && hdr.Begins(ReadBytes(position, hdr.cells.front().width));
}

bool CRawScan::HasSegmentAt(std::int64_t position) const {
    const auto& hdr = m_layout->segment;
    return position >= 0 && hdr.Begins(ReadBytes(position, hdr.cells.front().width));
}

std::string CRawScan::ReadBytes(std::int64_t position, std::size_t size) const {
    std::string bytes(size, '\0');
    bytes.resize(m_file.ReadUpTo(position, std::as_writable_bytes(std::span(bytes))));
    return bytes;
}

/// Appends the recording at the position, or returns why there is none.
std::optional<CChainBreak::EReason> CRawScan::ReadRecording(std::int64_t position) {
    if (!HasByteAt(position)) return CChainBreak::EReason::Nowhere;
    const std::string bytes = ReadBytes(position, m_layout->recording.size);
    if (!m_layout->recording.Begins(bytes)) return CChainBreak::EReason::NoHeader;
    CRecordingAt recording{position, {}};
    if (!Decode(*m_layout, bytes, recording.header)) return CChainBreak::EReason::TooManyChannels;
    m_recordings.push_back(std::move(recording));
    return std::nullopt;
}

void CRawScan::WalkRecordings() {
    CChainGuard guard(m_file, m_layout->recording.size);
    std::int64_t next = m_header.FPosFirstRecordingHdr;
    std::int64_t cell = OffsetOf(m_layout->file["FPosFirstRecordingHdr"]);
    while (next != kUnset && !m_break) {
        const auto reason = guard.Admits(next) ? ReadRecording(next) : CChainBreak::EReason::Circle;
        if (reason) {
            m_break = CChainBreak{*reason, next, cell};
        } else {
            cell = next + OffsetOf(m_layout->recording["FPosNextRecordingHdr"]);
            next = m_recordings.back().header.FPosNextRecordingHdr;
        }
    }
}

CSegmentWalk::CSegmentWalk(const CRawScan& scan, std::int64_t first, std::int64_t cell, bool isUnfinished)
    : m_scan(scan),
      m_layout(scan.Layout()),
      m_nextCell(OffsetOf(m_layout.segment["FPosNextSegmentHdr"])),
      m_guard(scan.File(), m_layout.segment.size),
      m_next(first),
      m_cell(cell),
      m_isUnfinished(isUnfinished) {
    m_segment.layout = &m_layout;
}

const CSegmentAt* CSegmentWalk::Next() {
    using enum CChainBreak::EReason;
    if (m_next == kUnset || m_break) return nullptr;
    const auto breakOff = [&](CChainBreak::EReason reason) {
        m_break = CChainBreak{reason, m_next, m_cell};
        return nullptr;
    };
    if (!m_scan.HasByteAt(m_next)) return breakOff(Nowhere);
    if (m_next >= m_scan.Size()) {  // appended since: the chain ended here
        m_next = kUnset;
        return nullptr;
    }
    if (!m_guard.Admits(m_next)) return breakOff(Circle);
    const std::string_view bytes = HeaderBytes(m_next);
    if (!m_layout.segment.Begins(bytes)) return breakOff(NoHeader);

    m_segment.position = m_next;
    m_segment.bytes = bytes;
    m_segment.header = {};
    Decode(m_layout, bytes, m_segment.header);
    m_segmentBytes = m_segment.End() - m_next;
    m_cell = m_next + m_nextCell;
    m_next = m_segment.header.FPosNextSegmentHdr;
    if (m_next == kUnset && m_isUnfinished && m_scan.HasSegmentAt(m_segment.End())) m_next = m_segment.End();
    return &m_segment;
}

std::string_view CSegmentWalk::HeaderBytes(std::int64_t position) {
    const std::size_t size = m_layout.segment.size;
    if (m_sampleWindow == nullptr) return m_scan.Window().BytesAt(position, size, BytesAhead()).substr(0, size);
    try {
        return m_sampleWindow->At(position, size);
    } catch (const vxfileio::recovery::CReadFailure&) {  // perhaps only of bytes that were read ahead
        return m_scan.Window().BytesAt(position, size, size);
    }
}

/// Segments tend to be as long as the one before. Reads whole segments, so that none is split between two reads.
std::size_t CSegmentWalk::BytesAhead() const {
    if (m_segmentBytes == 0 || m_segmentBytes > kShortSegment) return m_layout.segment.size;
    const auto bytes = static_cast<std::size_t>(m_segmentBytes);
    return std::max(CFileWindow::kRoom / bytes, std::size_t{1}) * bytes;
}

CSegmentWalk SegmentsOf(const CRawScan& scan, const CRecordingAt& recording) {
    const std::int64_t cell = recording.position + OffsetOf(scan.Layout().recording["FPosRecordingData"]);
    const std::int64_t first = IsWithoutSegments(scan, recording) ? kUnset : recording.header.FPosRecordingData;
    return {scan, first, cell};
}

CSegmentWalk SegmentsAfter(const CRawScan& scan, const CRecordingAt& recording) {
    const std::int64_t first = scan.DataPosition(recording);
    return {scan, scan.HasSegmentAt(first) ? first : kUnset, first, true};
}

CSegmentWalk AllSegmentsOf(const CRawScan& scan, const CRecordingAt& recording) {
    return recording.IsFinished() ? SegmentsOf(scan, recording) : SegmentsAfter(scan, recording);
}

bool IsWithoutSegments(const CRawScan& scan, const CRecordingAt& recording) {
    const std::int64_t first = recording.header.FPosRecordingData;
    const bool leadsPast = first == recording.header.FPosNextRecordingHdr || first == scan.Size();
    return leadsPast && first >= 0 && !scan.HasSegmentAt(first);
}

std::string NameOf(const CRecordingAt& recording, std::size_t index) {
    return "recording " + std::to_string(index + 1) + " (" + Readable(recording.header.TaskName) + ' ' +
           std::to_string(recording.header.Recording) + ')';
}

}  // namespace vxfile
