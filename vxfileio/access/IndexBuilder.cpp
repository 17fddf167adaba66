#include "vxfileio/access/IndexBuilder.h"

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "vxfileio/access/Missing.h"
#include "vxfileio/rawdata/ChainGuard.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/rawdata/RecordingHdrReader.h"
#include "vxfileio/rawdata/ScaleFault.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::access {

using namespace rawdata;

namespace {

constexpr double kUnknownUnits = std::numeric_limits<double>::quiet_NaN();

}  // namespace

CIndexBuilder::CIndexBuilder(std::shared_ptr<const CRawDataReader> reader, std::size_t recording,
                             const std::function<void()>& check)
    : m_index(std::make_shared<CIndexData>(CIndexData{.reader = std::move(reader), .recording = recording})),
      m_file(m_index->reader->File()),
      m_layout(m_index->reader->Layout()),
      m_window(m_file, m_layout.segment.size),
      m_check(check) {
    for (const CRawDataChannelInfo& channel : m_index->Header().WellChannels) {
        const auto row = static_cast<std::uint32_t>(m_index->wells.size());
        if (m_index->rows.try_emplace(channel.ID, row).second) m_index->wells.push_back(channel);
    }
    std::string bytes(m_layout.recording.size, '\0');
    const std::int64_t position = EndOfHdr() - static_cast<std::int64_t>(bytes.size());
    bytes.resize(m_file.ReadUpTo(position, std::as_writable_bytes(std::span(bytes))));
    for (const auto& [id, fault] : ScaleFaultsOf(m_layout, bytes, m_index->Header().WellChannels))
        m_index->wells[m_index->rows.at(id)].UnitsPerAD = kUnknownUnits;
}

std::shared_ptr<const CIndexData> CIndexBuilder::BuildFinished() {
    CChainGuard guard(m_file, m_layout.segment.size);
    const bool isEmpty = m_index->reader->IsWithoutSegments(m_index->recording);
    std::int64_t position = isEmpty ? kUnset : m_index->Header().FPosRecordingData;
    while (position != kUnset) {
        CSegmentHdr header;
        if (!ReadHdr(position, header) || !guard.Admits(position)) {
            m_index->damage = position < 0 ? kBadSegmentPosition : kBadSegmentHdr;
            break;
        }
        Add(position, header);
        position = header.FPosNextSegmentHdr;
    }
    m_index->fileSize = m_file.Size();
    const auto any = [](std::uint32_t) { return true; };
    m_index->segments.ForEach(0, m_index->segments.Count(), any, [&](const CSegmentRow& row) {
        m_index->certain += row.samples - MissingSamples(row.offset, row.samples, m_index->fileSize);
    });
    return std::move(m_index);
}

/// A segment counts as certain once another one follows or a position leads to it: both are written after it.
std::shared_ptr<const CIndexData> CIndexBuilder::BuildUnfinished() {
    std::int64_t position = EndOfHdr();
    std::uint32_t doubtful = 0;
    bool isPointedTo = false;
    CSegmentHdr header;
    while (ReadWhole(position, isPointedTo, header)) {
        Add(position, header);
        m_index->certain += doubtful;
        const bool pointsOn = header.FPosNextSegmentHdr != kUnset;
        doubtful = isPointedTo || pointsOn ? 0 : SamplesOf(header);
        m_index->certain += SamplesOf(header) - doubtful;
        const std::int64_t end = EndOf(m_layout, position, header);
        position = pointsOn ? header.FPosNextSegmentHdr : end;
        if (position < end) break;  // no writer leaves that
        isPointedTo = pointsOn;
    }
    return std::move(m_index);
}

/// Returns the offset of the byte after the recording header.
std::int64_t CIndexBuilder::EndOfHdr() const {
    const auto& reader = *m_index->reader;
    const std::size_t number = m_index->recording;
    const std::int64_t position =
        number == 0 ? reader.GetFileHdr()->FPosFirstRecordingHdr : reader.Recordings()[number - 1].FPosNextRecordingHdr;
    return position + static_cast<std::int64_t>(m_layout.recording.size);
}

/// Returns false if there is no segment header at the position.
bool CIndexBuilder::ReadHdr(std::int64_t position, CSegmentHdr& header) {
    if (m_check) m_check();
    const std::string_view bytes = m_window.HdrAt(position);
    if (!DecodeFront(m_layout, bytes, header)) return false;
    DecodeRest(m_layout, bytes, header);
    return true;
}

/// Returns false if there is no segment that is in the file with all its samples. Where no position points to it, its
/// size must also agree with its times.
bool CIndexBuilder::ReadWhole(std::int64_t position, bool isPointedTo, CSegmentHdr& header) {
    if (!ReadHdr(position, header) || !Settle(position, header)) return false;
    if (!isPointedTo && !IsConsistent(header)) return false;
    const std::int64_t end = EndOf(m_layout, position, header);
    if (end > m_index->fileSize) m_index->fileSize = m_file.Size();
    return end <= m_index->fileSize;
}

/// Rereads a header whose next position isn't as its writer leaves it, until it stays: the writer may be rewriting it.
/// Returns false if the header is gone.
bool CIndexBuilder::Settle(std::int64_t position, CSegmentHdr& header) {
    for (int rereads = 0; rereads < CRecordingHdrReader::kMostRereads; ++rereads) {
        const std::int64_t next = header.FPosNextSegmentHdr;
        if (next == kUnset || next == EndOf(m_layout, position, header)) break;
        if (!ReadHdr(position, header)) return false;
        if (header.FPosNextSegmentHdr == next) break;
    }
    return true;
}

void CIndexBuilder::Add(std::int64_t position, const CSegmentHdr& header) {
    if (header.Size != SamplesOf(header)) m_index->sizes.emplace(m_index->segments.Count(), header.Size);
    m_index->segments.Add({.well = WellOf(header.ID),
                           .samples = SamplesOf(header),
                           .timeFrom = header.TimeFrom,
                           .timeTo = header.TimeTo,
                           .offset = DataOf(m_layout, position)});
}

/// Returns the index of a well, which is a new one if neither header nor earlier segments have it.
std::uint32_t CIndexBuilder::WellOf(std::int32_t id) {
    const auto row = static_cast<std::uint32_t>(m_index->wells.size());
    const auto [found, isNew] = m_index->rows.try_emplace(id, row);
    if (isNew) m_index->wells.push_back({.ID = id, .UnitsPerAD = kUnknownUnits});
    return found->second;
}

}  // namespace vxfileio::access
