#include "vxfileio/rawdata/RawDataWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <span>
#include <utility>

#include "vxfileio/base/EnumerationWords.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"

namespace vxfileio::rawdata {

using helpers::CBytes;

namespace {

static_assert(std::endian::native == std::endian::little,
              "samples go to the file straight from memory, low byte first");

/// Returns the key of the list that belongs to a task; null if the task has none.
const char* ListOf(const std::string& taskName) {
    for (const auto& [task, key] : {std::pair{enTask::PreQC, "PreQC"}, std::pair{enTask::CompoundTest, "CompoundTest"},
                                    std::pair{enTask::PostQC, "PostQC"}}) {
        if (base::WordOf(task) == taskName) return key;
    }
    return nullptr;
}

/// A reader holds a segment's size in 32 bits.
constexpr std::int64_t kMostSamples = std::numeric_limits<std::uint32_t>::max();

CBytes AsBytes(std::string_view text) { return std::as_bytes(std::span(text.data(), text.size())); }

std::int64_t SampleCount(std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick) {
    if (tick <= 0) throw CExcVXReader(kBadTick);
    if (timeTo < timeFrom) throw CExcVXReader(kTimesReversed);
    // Unsigned, because the span of two 64-bit times can go beyond the signed range.
    const auto span = static_cast<std::uint64_t>(timeTo) - static_cast<std::uint64_t>(timeFrom);
    const bool tooLong = span > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (tooLong || static_cast<std::int64_t>(span) / tick >= kMostSamples) throw CExcVXReader(kTooManySamples);
    return static_cast<std::int64_t>(span) / tick + 1;
}

std::string Join(const std::vector<std::string>& values) {
    std::string joined;
    for (const auto& value : values) {
        if (&value != &values.front()) joined += ':';
        joined += value;
    }
    return joined;
}

}  // namespace

CRawDataWriter::~CRawDataWriter() { Close(); }

void CRawDataWriter::Open(const std::string& path) {
    Close();
    m_refusedHdrs.reserve(m_layout->file.size + m_layout->recording.size);
    m_missingSegments = 0;
    MakeRoomForRefusals();
    if (!m_file.Create(path)) throw CExcVXReader(kCannotOpen + path);
    m_stage = enStage::Opened;
}

void CRawDataWriter::WriteFileHdr(const CRawDataFileHdr& header) {
    RefuseBefore(enStage::Opened);
    if (m_stage != enStage::Opened) throw CExcVXReader(kFileHdrTwice);
    const CLayout& layout = LayoutForWriting(header.FileVersion);
    std::string bytes(layout.file.size, '\0');
    Encode(layout, header, bytes);
    MakeRoomForRefusals();
    m_refusedHdrs.reserve(layout.file.size + layout.recording.size);
    m_layout = &layout;
    m_nextSegmentCell = &layout.segment["FPosNextSegmentHdr"];
    m_refusedHdrs = bytes;
    m_stage = enStage::HasFileHdr;
    AppendRefusedHdrs();
}

void CRawDataWriter::WriteRecordingHdr(const CRawDataRecordingHdr& header) {
    RefuseBefore(enStage::HasFileHdr);
    std::string bytes(m_layout->recording.size, '\0');
    Encode(*m_layout, header, bytes);
    MakeRoomForRefusals();
    // A recording before this one whose header never reached the file has no data there either: it is given up.
    m_refusedHdrs.resize(m_file.End() == 0 ? m_layout->file.size : 0);
    m_refusedHdrs += bytes;
    m_stage = enStage::InRecording;
    AppendRefusedHdrs();
}

void CRawDataWriter::WriteData(std::int32_t wellID, std::int64_t timeFrom, std::int64_t timeTo, std::int64_t tick,
                               const std::uint16_t* samples) {
    RefuseBefore(enStage::InRecording);
    const std::int64_t count = SampleCount(timeFrom, timeTo, tick);
    if (samples == nullptr) throw CExcVXReader(kNoSamples);
    MakeRoomForRefusals();

    std::array<char, kMostSegmentHdr> room;
    const auto bytes = std::span(room).first(m_layout->segment.size);
    Encode(*m_layout, CSegmentHdr{wellID, kUnset, timeFrom, timeTo, count}, bytes);
    const std::span data(samples, static_cast<std::size_t>(count));
    const bool hasHdrs = AppendRefusedHdrs();
    const std::int64_t position = m_file.End();
    if (!hasHdrs || !m_file.Append({std::as_bytes(bytes), std::as_bytes(data)})) {
        ++m_missingSegments;  // the file ends where it did, and the next segment takes this one's place
        return;
    }
    if (m_latestSegment != kUnset) RewritePosition(m_latestSegment, *m_nextSegmentCell, position);
    m_latestSegment = position;
}

void CRawDataWriter::UpdateFileHdr(const std::string& taskName, const std::vector<std::string>& values) {
    RefuseBefore(enStage::HasFileHdr);
    const char* const key = ListOf(taskName);
    if (key == nullptr) return;
    const CFileCell& list = m_layout->file[key];
    std::string cell(list.width, '\0');
    EncodeCell(list.key, Join(values), cell);
    MakeRoomForRefusals();
    if (m_file.End() == 0) {
        m_refusedHdrs.replace(list.offset, cell.size(), cell);
    } else {
        Rewrite(static_cast<std::int64_t>(list.offset), cell);
    }
}

void CRawDataWriter::Close() {
    if (m_stage == enStage::Closed) return;
    AppendRefusedHdrs();
    FinishRecording(kUnset);
    for (const CRefusedRewrite& rewrite : m_refusedRewrites)
        Repeat(rewrite);  // the last try
    m_file.Close();
    m_stage = enStage::Closed;
    m_refusedHdrs.clear();
    m_refusedRewrites.clear();
    m_recordingHdr = kUnset;
    m_latestSegment = kUnset;
}

void CRawDataWriter::RefuseBefore(enStage needed) const {
    if (m_stage >= needed) return;
    if (m_stage == enStage::Closed) throw CExcVXReader(kNoOpenFile);
    throw CExcVXReader(m_stage == enStage::Opened ? kFileHdrMissing : kNoRecording);
}

std::string CRawDataWriter::GetWriteError() const {
    std::string text = m_file.WriteError();
    if (m_missingSegments > 0) text += "; segments missing: " + std::to_string(m_missingSegments);
    return text;
}

/// A call has one rewrite, and `Close` behind it up to two.
void CRawDataWriter::MakeRoomForRefusals() {
    constexpr std::size_t kMostRewrites = 3;
    const std::size_t size = m_refusedRewrites.size();
    if (m_refusedRewrites.capacity() < size + kMostRewrites) m_refusedRewrites.reserve(2 * size + kMostRewrites);
}

/// Appends the headers that the file still lacks. Returns false if the system refuses again.
bool CRawDataWriter::AppendRefusedHdrs() {
    if (m_refusedHdrs.empty()) return true;
    if (!m_file.Append({AsBytes(m_refusedHdrs)})) return false;
    m_refusedHdrs.clear();
    if (m_stage == enStage::InRecording)
        BeginRecordingAt(m_file.End() - static_cast<std::int64_t>(m_layout->recording.size));
    return true;
}

/// Points at a recording header that has just become whole.
void CRawDataWriter::BeginRecordingAt(std::int64_t position) {
    if (m_recordingHdr == kUnset) {
        RewritePosition(0, m_layout->file["FPosFirstRecordingHdr"], position);
    } else {
        FinishRecording(position);
    }
    m_recordingHdr = position;
    m_latestSegment = kUnset;
}

/// Gives the latest recording, if there is one, the position of its data and of what comes behind it.
void CRawDataWriter::FinishRecording(std::int64_t nextRecordingHdr) {
    if (m_recordingHdr == kUnset) return;
    const auto& hdr = m_layout->recording;
    const CRecordingCell& first = hdr["FPosRecordingData"];
    const CRecordingCell& last = hdr["FPosNextRecordingHdr"];
    std::array<char, kMostRewritten> room{};
    const auto bytes = std::span(room).first(last.End() - first.offset);
    const auto put = [&](const CRecordingCell& cell, std::int64_t position) {
        EncodeCell(cell.key, position, bytes.subspan(cell.offset - first.offset, cell.width));
    };
    put(first, m_recordingHdr + static_cast<std::int64_t>(hdr.size));
    put(hdr["FPosRecordingTrailer"], kUnset);
    put(last, nextRecordingHdr);
    Rewrite(m_recordingHdr + static_cast<std::int64_t>(first.offset), {bytes.data(), bytes.size()});
}

/// Rewrites one cell of the header at `hdr`, which holds a position.
void CRawDataWriter::RewritePosition(std::int64_t hdr, const auto& cell, std::int64_t position) {
    std::array<char, kMostRewritten> room{};
    const auto bytes = std::span(room).first(cell.width);
    EncodeCell(cell.key, position, bytes);
    Rewrite(hdr + static_cast<std::int64_t>(cell.offset), {bytes.data(), bytes.size()});
}

/// Writes cells over those at a position, now or, if the system refuses, as soon as it takes them.
void CRawDataWriter::Rewrite(std::int64_t position, std::string_view bytes) {
    RetryRewrites();
    const bool isTaken = m_file.WriteAt(position, {AsBytes(bytes)});
    const auto place = std::lower_bound(m_refusedRewrites.begin(), m_refusedRewrites.end(), position,
                                        [](const auto& rewrite, std::int64_t at) { return rewrite.position < at; });
    const bool isKnown = place != m_refusedRewrites.end() && place->position == position;
    if (isTaken) {
        if (isKnown) m_refusedRewrites.erase(place);
        return;
    }
    // Of one position, the newest cells count; they are always as many.
    const auto kept = isKnown ? place : m_refusedRewrites.insert(place, {position, bytes.size()});
    std::copy(bytes.begin(), bytes.end(), kept->bytes.begin());
}

/// Repeats the refused rewrites up to the first that is refused again, so that a broken disk costs one call.
void CRawDataWriter::RetryRewrites() {
    const auto isRefused = [this](const CRefusedRewrite& rewrite) { return !Repeat(rewrite); };
    const auto first = std::find_if(m_refusedRewrites.begin(), m_refusedRewrites.end(), isRefused);
    m_refusedRewrites.erase(m_refusedRewrites.begin(), first);
}

bool CRawDataWriter::Repeat(const CRefusedRewrite& rewrite) {
    return m_file.WriteAt(rewrite.position, {AsBytes({rewrite.bytes.data(), rewrite.size})});
}

}  // namespace vxfileio::rawdata
