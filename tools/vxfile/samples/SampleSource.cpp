#include "tools/vxfile/samples/SampleSource.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/io/Failure.h"

namespace vxfile {

namespace {

constexpr std::size_t kBlockSamples = std::size_t{512} << 10;

/// Tells whether a list that stands for a choice has the item.
bool Has(const auto& list, const auto& item) { return list.empty() || std::ranges::find(list, item) != list.end(); }

/// Returns the distance of two times; it may be beyond the signed range.
std::uint64_t Distance(std::int64_t from, std::int64_t to) {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

/// Returns the sample interval of a segment: that of its well, or the one that its own times tell.
std::int64_t TickOf(const CSegmentAt& segment, const CRawDataChannelInfo* channel) {
    if (channel != nullptr && channel->Ticks > 0) return channel->Ticks;
    const auto& header = segment.header;
    if (segment.Samples() < 2 || header.TimeTo <= header.TimeFrom) return 1;
    const std::uint64_t tick = Distance(header.TimeFrom, header.TimeTo) / (segment.Samples() - 1);
    return std::max<std::int64_t>(static_cast<std::int64_t>(tick), 1);
}

}  // namespace

CSampleSource::CSampleSource(const std::string& path, CSampleChoice choice)
    : m_path(path), m_scan(path), m_choice(std::move(choice)), m_block(kBlockSamples) {
    if (m_scan.Break()) RefuseBreak("its recordings");
}

void CSampleSource::ForEach(const std::function<void(const CPiece&)>& take) const {
    for (std::size_t i = 0; i < m_scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = m_scan.Recordings()[i];
        if (!IsChosen(recording.header)) continue;
        CSegmentWalk walk = SegmentsOf(m_scan, recording);
        while (const CSegmentAt* segment = walk.Next()) {
            if (!Has(m_choice.wells, segment->header.ID)) continue;
            if (segment->End() > m_scan.Size()) RefuseBreak("the last segment of " + NameOf(recording, i));
            CPiece piece = PieceOf(*segment, recording);
            piece.recordingIndex = i;
            Clip(piece);
            if (piece.count > 0) take(piece);
        }
        if (walk.Break()) RefuseBreak(NameOf(recording, i));
    }
}

void CSampleSource::Read(const CPiece& piece, const std::function<void(std::span<const std::uint16_t>)>& take) {
    std::int64_t position = piece.position;
    for (std::uint64_t left = piece.count; left > 0;) {
        const auto block = std::span(m_block).first(std::min<std::uint64_t>(left, kBlockSamples));
        if (m_scan.File().ReadUpTo(position, std::as_writable_bytes(block)) != block.size_bytes())
            RefuseBreak("the samples at byte " + std::to_string(position));
        take(block);
        left -= block.size();
        position += static_cast<std::int64_t>(block.size_bytes());
    }
}

std::vector<std::string> CSampleSource::Unfinished() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < m_scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = m_scan.Recordings()[i];
        if (IsChosen(recording.header) && recording.header.FPosRecordingData == vxfileio::rawdata::kUnset)
            names.push_back(NameOf(recording, i));
    }
    return names;
}

bool CSampleSource::IsChosen(const CRawDataRecordingHdr& header) const {
    return Has(m_choice.tasks, header.TaskName) && Has(m_choice.recordings, header.Recording);
}

CPiece CSampleSource::PieceOf(const CSegmentAt& segment, const CRecordingAt& recording) const {
    CPiece piece;
    piece.recording = &recording.header;
    piece.well = segment.header.ID;
    const auto& wells = recording.header.WellChannels;
    const auto well = std::ranges::find(wells, piece.well, &CRawDataChannelInfo::ID);
    if (well != wells.end()) piece.channel = &*well;
    piece.time = segment.header.TimeFrom;
    piece.tick = TickOf(segment, piece.channel);
    piece.count = segment.Samples();
    piece.position = segment.DataPosition();
    return piece;
}

/// Leaves out what lies before and behind the chosen times.
void CSampleSource::Clip(CPiece& piece) const {
    const auto tick = static_cast<std::uint64_t>(piece.tick);
    if (m_choice.to < piece.time) {
        piece.count = 0;
        return;
    }
    if (piece.count == 0) return;
    piece.count = std::min(piece.count - 1, Distance(piece.time, m_choice.to) / tick) + 1;
    if (m_choice.from <= piece.time) return;
    const std::uint64_t passed = (Distance(piece.time, m_choice.from) - 1) / tick + 1;
    if (passed >= piece.count) {
        piece.count = 0;
        return;
    }
    piece.count -= passed;
    piece.time = static_cast<std::int64_t>(static_cast<std::uint64_t>(piece.time) + passed * tick);
    piece.position += static_cast<std::int64_t>(passed * sizeof(std::uint16_t));
}

void CSampleSource::RefuseBreak(const std::string& where) const {
    throw CFailure(m_path + " is damaged or cut, " + where + " can't be read; save what is whole by vxfile recover.");
}

}  // namespace vxfile
