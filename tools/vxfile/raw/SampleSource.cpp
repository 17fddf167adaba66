#include "tools/vxfile/raw/SampleSource.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <unordered_map>
#include <utility>

#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/raw/UnitScales.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// The number of pieces that the first walk keeps.
constexpr std::size_t kMostKept = std::size_t{16} << 10;

/// Returns the sample interval of a segment: the interval of its well, or one computed from its times.
std::int64_t TickOf(const CSegmentAt& segment, const CRawDataChannelInfo* channel) {
    if (channel != nullptr && channel->Ticks > 0) return channel->Ticks;
    const auto& header = segment.header;
    if (segment.Samples() < 2 || header.TimeTo <= header.TimeFrom) return 1;
    const std::uint64_t tick = Distance(header.TimeFrom, header.TimeTo) / (segment.Samples() - 1);
    return std::max<std::int64_t>(static_cast<std::int64_t>(tick), 1);
}

/// Returns true if the times of all samples fit the type.
bool HasTimes(const CSegmentAt& segment, std::int64_t tick) {
    const std::uint64_t most = Distance(segment.header.TimeFrom, std::numeric_limits<std::int64_t>::max());
    return segment.Samples() == 0 || segment.Samples() - 1 <= most / static_cast<std::uint64_t>(tick);
}

/// The wells that a recording lists, by ID. If two have the same ID, the first one counts.
class CListedWells {
 public:
    explicit CListedWells(const CRecordingAt& recording) {
        for (const auto& channel : recording.header.WellChannels)
            m_channels.try_emplace(channel.ID, &channel);
    }

    /// Returns null if the well isn't listed. The channel is valid as long as the recording.
    const CRawDataChannelInfo* Find(std::int32_t well) const {
        const auto channel = m_channels.find(well);
        return channel == m_channels.end() ? nullptr : channel->second;
    }

 private:
    std::unordered_map<std::int32_t, const CRawDataChannelInfo*> m_channels;
};

bool HasAllTimes(const CSampleChoice& choice) {
    const CSampleChoice all;
    return choice.from == all.from && choice.to == all.to;
}

}  // namespace

CSampleSource::CSampleSource(const std::string& path, CSampleChoice choice)
    : m_path(path),
      m_scan(path),
      m_choice(std::move(choice)),
      m_reads(m_choice.plate.wells.empty() && HasAllTimes(m_choice) ? EWalk::Samples : EWalk::Headers) {
    if (m_choice.from > m_choice.to)
        throw CFailure("--from " + std::to_string(m_choice.from) + " is later than --to " +
                       std::to_string(m_choice.to) + "; swap them.");
    if (m_scan.Break()) RefuseBreak("its recordings");
    RefuseUnknownRecordings(m_choice.plate, m_path, m_scan.Recordings());
    RefuseUnknownNumbers();
    RefuseUnfinished();
}

void CSampleSource::RefuseUnknownNumbers() const {
    const auto& tasks = m_choice.plate.tasks;
    std::set<std::int32_t> numbers;
    for (const auto& recording : m_scan.Recordings()) {
        if (HasOrIsEmpty(tasks, recording.header.TaskName)) numbers.insert(recording.header.Recording);
    }
    for (const auto number : m_choice.recordings) {
        if (!numbers.contains(number))
            throw CFailure(m_path + " has no recording " + std::to_string(number) +
                           (tasks.empty() ? "; its numbers: " : " in the chosen tasks; their numbers: ") +
                           ListOrNone(numbers) + '.');
    }
}

void CSampleSource::RefuseUnfinished() const {
    const auto isReadable = [&](const auto& recording) { return IsChosen(recording.header) && recording.IsFinished(); };
    if (!Unfinished().empty() && std::ranges::none_of(m_scan.Recordings(), isReadable)) RefuseWells();
}

void CSampleSource::ForEach(const CTakePiece& take) {
    for (const CPiece& piece : m_kept)
        take(piece);
    Walk(m_afterKept, m_reads, [&](const CPiece& piece, CPlace /*next*/) { take(piece); });
}

const std::map<std::int32_t, std::uint64_t>& CSampleSource::Counts() {
    if (!m_kept.empty()) return m_counts;
    m_judge.Clear();
    Walk({}, EWalk::Headers, [&](const CPiece& piece, CPlace next) {
        m_counts[piece.well] += piece.count;
        if (m_kept.size() == kMostKept) return;
        m_kept.push_back(piece);
        m_afterKept = next;
    });
    m_judge.Close();
    return m_counts;
}

void CSampleSource::Walk(CPlace from, EWalk reads, const std::function<void(const CPiece&, CPlace)>& take) {
    if (from.recording == 0 && !from.segment) m_judge.NoteStart();
    for (std::size_t i = from.recording; i < m_scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = m_scan.Recordings()[i];
        if (!IsChosen(recording.header) || !recording.IsFinished()) continue;
        CSegmentWalk walk = SegmentsOf(m_scan, recording, reads);
        if (i == from.recording && from.segment) walk.GoTo(*from.segment);
        WalkRecording(i, walk, take);
    }
}

void CSampleSource::WalkRecording(std::size_t index, CSegmentWalk walk,
                                  const std::function<void(const CPiece&, CPlace)>& take) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    const CListedWells wells(recording);
    const auto scaleFaults = ScaleFaultsOf(m_scan, recording);
    const auto noteJump = [&](std::int64_t end) {
        if (walk.NextPosition() != end) m_judge.NoteEnd(end, index);
    };
    noteJump(m_scan.DataPosition(recording));
    while (const CSegmentAt* segment = walk.Next()) {
        noteJump(segment->End());
        const CRawDataChannelInfo* const channel = wells.Find(segment->header.ID);
        if (channel == nullptr) m_judge.NoteUnlisted(*segment, index);
        if (!m_choice.plate.HasWell(segment->header.ID)) continue;
        RefuseWrong(*segment, channel, index);
        CPiece piece = Chosen(*segment, recording.header, channel);
        const auto fault = scaleFaults.find(piece.well);
        if (fault != scaleFaults.end())
            piece.scaleFault = m_path + ": " + TextOf(fault->second, recording, index, piece.well);
        if (piece.count > 0) take(piece, {index, walk.NextPosition()});
    }
    if (walk.Break()) RefuseBreak(NameOf(recording, index));
}

/// Throws `CFailure` unless the samples of the segment are in the file and belong to it.
void CSampleSource::RefuseWrong(const CSegmentAt& segment, const CRawDataChannelInfo* channel, std::size_t recording) {
    const auto name = [&] { return NameOf(m_scan.Recordings()[recording], recording); };
    if (segment.End() > m_scan.Size()) RefuseBreak("the last segment of " + name());
    if (m_judge.IsShared(segment, recording)) RefuseBreak(name() + ", which leads into another recording,");
    if (channel != nullptr && channel->Ticks <= 0) m_judge.NoteNoInterval(segment, recording);
    const bool isAdmitted = m_judge.Admits(segment, channel == nullptr ? 0 : channel->Ticks, recording);
    if (!isAdmitted || !HasTimes(segment, TickOf(segment, channel)))
        RefuseBreak("the segment of well " + std::to_string(segment.header.ID) + " at byte " +
                    std::to_string(segment.position) + " in " + name());
}

void CSampleSource::Read(const CPiece& piece, const std::function<void(std::span<const std::uint16_t>)>& take) {
    std::int64_t position = piece.position;
    for (std::uint64_t left = piece.count; left > 0;) {
        const auto samples = m_scan.Window().SamplesAt(position, left * kSampleBytes);
        if (samples.empty()) RefuseBreak("the samples at byte " + std::to_string(position));
        const auto part = samples.first(std::min<std::uint64_t>(samples.size(), left));
        take(part);
        left -= part.size();
        position += static_cast<std::int64_t>(part.size_bytes());
    }
}

void CSampleSource::RefuseNothing() const {
    if (m_any) return;
    if (m_first > m_last || HasAllTimes(m_choice)) RefuseWells();
    throw CFailure(m_path + " has no samples in the chosen times; those of the chosen wells and recordings go from " +
                   std::to_string(m_first) + " to " + std::to_string(m_last) + '.');
}

/// Throws `CFailure`: the chosen recordings have no segments of the chosen wells.
void CSampleSource::RefuseWells() const {
    const auto wells = WellsOf(m_scan.Recordings(), [&](const auto& header) { return IsChosen(header); });
    const std::string theirs = ListOrNone(wells) + '.';
    const auto& chosen = m_choice.plate.wells;
    const auto isListed = [&](std::int32_t well) { return wells.contains(well); };
    if (!chosen.empty() && std::ranges::none_of(chosen, isListed))
        throw CFailure(m_path + " has no well " + ListText(chosen) +
                       " in the chosen recordings; their wells: " + theirs);
    const auto unfinished = Unfinished();
    if (!unfinished.empty())
        throw CFailure(unfinished.front() +
                       " is unfinished, so its samples can't be read; run 'vxfile recover' "
                       "to save them to a new file.");
    const auto doubts = Doubts();
    if (!doubts.empty()) throw CFailure(m_path + " has no samples of what was chosen. " + doubts.front());
    if (m_choice.plate.IsAll() && m_choice.recordings.empty())
        throw CFailure(m_path + " has no samples; run 'vxfile info' to see what it contains.");
    throw CFailure(m_path + " has no samples of what was chosen; the wells of the chosen recordings: " + theirs);
}

std::vector<std::int32_t> CSampleSource::MissingWells() const {
    std::vector<std::int32_t> missing;
    std::ranges::copy_if(m_choice.plate.wells, std::back_inserter(missing),
                         [&](std::int32_t well) { return !m_wells.contains(well); });
    return missing;
}

std::vector<std::string> CSampleSource::Unfinished() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < m_scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = m_scan.Recordings()[i];
        if (IsChosen(recording.header) && !recording.IsFinished()) names.push_back(NameOf(recording, i));
    }
    return names;
}

std::size_t CSampleSource::LongestTask() const {
    std::size_t longest = 0;
    for (const auto& recording : m_scan.Recordings()) {
        if (IsChosen(recording.header)) longest = std::max(longest, recording.header.TaskName.size());
    }
    return longest;
}

bool CSampleSource::IsChosen(const CRawDataRecordingHdr& header) const {
    return m_choice.plate.HasRecording(header) && HasOrIsEmpty(m_choice.recordings, header.Recording);
}

/// Returns the chosen part of a segment, and updates the range of times and the list of wells.
CPiece CSampleSource::Chosen(const CSegmentAt& segment, const CRawDataRecordingHdr& recording,
                             const CRawDataChannelInfo* channel) {
    CPiece piece;
    piece.recording = &recording;
    piece.well = segment.header.ID;
    piece.channel = channel;
    piece.time = segment.header.TimeFrom;
    piece.tick = TickOf(segment, piece.channel);
    piece.count = segment.Samples();
    piece.position = segment.DataPosition();
    if (!m_choice.plate.wells.empty()) m_wells.insert(piece.well);
    m_first = std::min(m_first, segment.header.TimeFrom);
    m_last = std::max(m_last, segment.header.TimeTo);
    Clip(piece);
    m_any = m_any || piece.count > 0;
    return piece;
}

/// Removes samples before and after the chosen times.
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
    piece.position += static_cast<std::int64_t>(passed * kSampleBytes);
}

void CSampleSource::RefuseBreak(const std::string& where) const {
    throw CFailure(m_path + " is damaged or cut: " + where +
                   " can't be read. Run 'vxfile recover' to save what is intact.");
}

}  // namespace vxfile
