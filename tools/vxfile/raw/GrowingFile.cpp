#include "tools/vxfile/raw/GrowingFile.h"

#include <span>
#include <utility>

#include "tools/vxfile/raw/RawScan.h"
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/OpenInput.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

CGrowingFile::CGrowingFile(const std::string& path) : m_path(path) { OpenInput(m_file, path); }

bool CGrowingFile::Look() {
    const std::int64_t before = m_position;
    m_size = m_file.Size();
    if (m_size < m_position) throw CFailure(m_path + " has become shorter; somebody has replaced it. Watch it anew.");
    if (m_position == 0 && !TakeFileHdr()) return false;
    while (TakeSegment() || TakeRecording())
        CheckInterrupt();
    return m_position != before;
}

/// The positions are read before the size: between recordings the next header is in the file before they are rewritten.
/// Once they are set, all is in the file, so whatever the next look doesn't take nobody will ever take.
CGrowingFile::EState CGrowingFile::State(bool hasNews) {
    const bool wasSet = std::exchange(m_wasSet, IsLastSet());
    if (!m_wasSet) return EState::Running;
    if (m_file.Size() == m_position) return LeadsToAll() ? EState::Finished : EState::Damaged;
    return wasSet && !hasNews ? EState::Damaged : EState::Running;
}

bool CGrowingFile::IsLastSet() const {
    if (m_recordings == 0) return false;
    CRawDataRecordingHdr header;
    return Decode(*m_layout, Read(m_recordingHdr, m_layout->recording.size), header) &&
           header.FPosRecordingData != kUnset;
}

bool CGrowingFile::LeadsToAll() const {
    const CRawScan scan(m_path);
    CSegmentBudget budget(scan);
    std::uint64_t segments = 0;
    for (const auto& recording : scan.Recordings()) {
        CSegmentWalk walk = SegmentsOf(scan, recording);
        for (; walk.Next() != nullptr && budget.Take(); ++segments)
            CheckInterrupt();
        if (walk.Break()) return false;
    }
    return !scan.Break() && scan.Recordings().size() == m_recordings && segments == m_segments;
}

bool CGrowingFile::TakeFileHdr() {
    const std::string bytes = Read(0, LargestFileHdr());
    if (!bytes.starts_with(kFileTypeText.substr(0, bytes.size())))
        throw CFailure(m_path + " is no raw data file; only those can be watched.");
    m_layout = &LayoutOfFile(bytes);
    if (bytes.size() < m_layout->file.size) return false;
    m_position = static_cast<std::int64_t>(m_layout->file.size);
    return true;
}

bool CGrowingFile::TakeSegment() {
    const auto& hdr = m_layout->segment;
    const std::string bytes = Read(m_position, hdr.size);
    if (m_recordings == 0 || bytes.size() < hdr.size || !hdr.Begins(bytes)) return false;
    CSegmentHdr header;
    Decode(*m_layout, bytes, header);
    const std::int64_t data = m_position + static_cast<std::int64_t>(hdr.size);
    const auto samples = static_cast<std::uint32_t>(header.Size);
    const std::int64_t end = data + std::int64_t{samples} * static_cast<std::int64_t>(sizeof(std::uint16_t));
    if (end > m_size) return false;
    ++m_latest.segments;
    ++m_segments;
    m_latest.samples += samples;
    m_latest.wells.insert(header.ID);
    m_position = end;
    return true;
}

bool CGrowingFile::TakeRecording() {
    const auto& hdr = m_layout->recording;
    const std::string bytes = Read(m_position, hdr.size);
    if (m_position >= m_size || bytes.size() < hdr.size || !hdr.Begins(bytes)) return false;
    CRunningRecording latest;
    latest.index = m_recordings;
    if (!Decode(*m_layout, bytes, latest.header)) return false;
    m_latest = std::move(latest);
    m_recordingHdr = m_position;
    m_position += static_cast<std::int64_t>(hdr.size);
    ++m_recordings;
    return true;
}

std::string CGrowingFile::Read(std::int64_t position, std::size_t size) const {
    std::string bytes(size, '\0');
    bytes.resize(m_file.ReadUpTo(position, std::as_writable_bytes(std::span(bytes))));
    return bytes;
}

}  // namespace vxfile
