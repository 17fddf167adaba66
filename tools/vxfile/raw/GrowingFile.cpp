#include "tools/vxfile/raw/GrowingFile.h"

#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include "tools/vxfile/system/Interrupt.h"
#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "verify/raw/RawScan.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

CGrowingFile::CGrowingFile(std::string path, CPlateChoice choice)
    : m_path(std::move(path)), m_choice(std::move(choice)) {
    static_cast<void>(Open());
}

bool CGrowingFile::Look() {
    if (!Open()) return false;
    m_size = m_file.Size();
    if (IsAnother()) StartOver();
    return TakeAll();
}

/// Reads the positions before the size: between recordings a writer appends the next header before it sets them. Once
/// they are set, the file is complete, so what the next look can't read, none can.
CGrowingFile::EState CGrowingFile::State(bool hasNews) {
    if (!IsThere()) return EState::Running;
    const bool wasSet = std::exchange(m_wasSet, IsLastSet());
    if (!m_wasSet) return EState::Running;
    const bool isAllTaken = m_file.Size() == m_position;
    if (!isAllTaken && (!wasSet || hasNews)) return EState::Running;
    if (isAllTaken && LeadsToAll()) return EState::Finished;
    StartOver();  // some data may come from an earlier file of this name
    m_size = m_file.Size();
    static_cast<void>(TakeAll());
    if (!IsLastSet()) return EState::Running;
    return m_file.Size() == m_position && LeadsToAll() ? EState::Finished : EState::Damaged;
}

/// Opens the file that has this name now. Returns false if there is none.
bool CGrowingFile::Open() {
    m_file.Close();  // first: on Windows, a deleted file exists until it is closed
    std::error_code none;
    if (std::filesystem::status(m_path, none).type() == std::filesystem::file_type::not_found) return false;
    OpenInput(m_file, m_path);
    return true;
}

/// Returns true if this isn't the file of the last look: it is shorter, or cells that writers never rewrite differ.
bool CGrowingFile::IsAnother() const {
    if (m_size < m_position) return true;
    const auto& guid = m_layout->file["Guid"];
    return m_position > 0 && (Read(static_cast<std::int64_t>(guid.offset), guid.width) != m_guid ||
                              (m_recordings > 0 && RecordingStart(m_recordingHdr) != m_recordingStart));
}

/// Returns the first cells of a recording header, which a writer doesn't change when it finishes the recording.
std::string CGrowingFile::RecordingStart(std::int64_t position) const {
    return Read(position, m_layout->recording["FPosRecordingData"].offset);
}

void CGrowingFile::StartOver() {
    ++m_replacements;
    m_position = 0;
    m_recordings = 0;
    m_segments = 0;
    m_wasSet = false;
}

/// Reads what is complete in the first `m_size` bytes. Returns true if there was anything new.
bool CGrowingFile::TakeAll() {
    const std::int64_t before = m_position;
    if (m_position == 0 && !TakeFileHdr()) return false;
    while (TakeSegment() || TakeRecording())
        CheckInterrupt();
    return m_position != before;
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
        throw CFailure(m_path + " isn't a raw data file; only raw data files can be watched.");
    m_layout = &LayoutOfFile(bytes);
    if (bytes.size() < m_layout->file.size) return false;
    m_guid = CellIn(m_layout->file["Guid"], bytes);
    m_position = static_cast<std::int64_t>(m_layout->file.size);
    return true;
}

bool CGrowingFile::TakeSegment() {
    const auto& hdr = m_layout->segment;
    const std::string bytes = Read(m_position, hdr.size);
    if (m_recordings == 0 || bytes.size() < hdr.size || !hdr.Begins(bytes)) return false;
    CSegmentHdr header;
    Decode(*m_layout, bytes, header);
    const std::int64_t end = EndOf(*m_layout, m_position, header);
    if (end > m_size) return false;
    ++m_segments;
    m_position = end;
    if (!m_choice.HasWell(header.ID)) return true;
    ++m_latest.segments;
    m_latest.samples += SamplesOf(header);
    m_latest.wells.insert(header.ID);
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
    m_recordingStart = RecordingStart(m_position);
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
