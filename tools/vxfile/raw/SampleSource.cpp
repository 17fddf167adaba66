#include "tools/vxfile/raw/SampleSource.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <unordered_map>
#include <utility>

#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/raw/UnitScales.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "verify/Failure.h"
#include "vxfileio/access/Internals.h"
#include "vxfileio/access/SampleStream.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/HeaderCodec.h"

using namespace vxfileio::rawdata;
using vxfileio::access::CInternals;
using vxfileio::access::CSamplePart;
using vxfileio::access::StreamSamples;

namespace vxfile {

namespace {

/// The most memory for the recordings that are kept, in bytes.
constexpr std::size_t kMostKept = std::size_t{4} << 20;

/// Returns about how much memory an index takes, in bytes. It holds segments in blocks of 4 KiB.
std::size_t MemoryOf(const CRecordingIndex& index) {
    return 32 * index.GetSegmentCount() + 128 * index.GetWells().size() + (std::size_t{5} << 10);
}

/// Returns true if the times of all samples fit the type. `tick` is the interval of the well, 0 if unknown.
bool HasTimes(const CSegmentAt& segment, std::int64_t tick) {
    const auto& [from, to] = std::pair(segment.header.TimeFrom, segment.header.TimeTo);
    return segment.Samples() == 0 ||
           TimeAfter(from, segment.Samples() - 1, IntervalOf(from, to, segment.Samples(), tick));
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

/// The segments of an index, as a walk along their chain finds them.
class CSegmentsAt {
 public:
    CSegmentsAt(const CRawScan& scan, const CRecordingIndex& index) : m_scan(scan), m_index(index) {
        if (!index.GetDamage().empty() && index.GetSegmentCount() > 0) m_next = NextOf(index.GetSegmentCount() - 1);
    }

    CSegmentAt At(std::size_t number) const {
        const CSegmentInfo info = m_index.GetSegment(number);
        CSegmentAt segment;
        segment.position = Position(number);
        segment.layout = &m_scan.Layout();
        segment.header.ID = info.WellID;
        segment.header.Size = CInternals::SizeOf(m_index, number);
        segment.header.TimeFrom = info.TimeFrom;
        segment.header.TimeTo = info.TimeTo;
        segment.header.FPosNextSegmentHdr = Position(number + 1);
        return segment;
    }

    /// Returns the position of a segment, or what the last one has as the position of the next.
    std::int64_t Position(std::size_t number) const {
        return number < m_index.GetSegmentCount() ? m_index.GetSegment(number).Offset - m_scan.SegmentHdrSize()
                                                  : m_next;
    }

 private:
    /// Returns the position of the next segment that the header of a segment has.
    std::int64_t NextOf(std::size_t number) const {
        CSegmentHdr header;
        Decode(m_scan.Layout(), m_scan.ReadBytes(Position(number), m_scan.Layout().segment.size), header);
        return header.FPosNextSegmentHdr;
    }

    const CRawScan& m_scan;
    const CRecordingIndex& m_index;
    std::int64_t m_next = kUnset;  ///< After the last segment: where a broken chain leads.
};

bool HasAllTimes(const CSampleChoice& choice) {
    const CSampleChoice all;
    return choice.from == all.from && choice.to == all.to;
}

}  // namespace

CSampleSource::CSampleSource(const std::string& path, CSampleChoice choice)
    : m_path(path), m_scan(path), m_choice(std::move(choice)) {
    if (m_choice.from > m_choice.to)
        throw CFailure("--from " + std::to_string(m_choice.from) + " is later than --to " +
                       std::to_string(m_choice.to) + "; swap them.");
    const std::string recordings = "its recordings";
    if (m_scan.Break()) RefuseBreak(recordings);
    RefuseUnknownRecordings(m_choice.plate, m_path, m_scan.Recordings());
    RefuseUnknownNumbers();
    if (!m_scan.Recordings().empty()) Read(recordings, [&] { m_file.emplace(m_path); });
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

void CSampleSource::ForEach(const CTakePiece& take) {
    Walk([&](std::size_t index, const CRead& /*read*/, const CSampleSelection& selection) {
        const CRecordingAt& recording = m_scan.Recordings()[index];
        const CListedWells wells(recording);
        std::map<std::int32_t, std::string> faults;
        for (const auto& [well, fault] : ScaleFaultsOf(m_scan, recording))
            faults.try_emplace(well, m_path + ": " + TextOf(fault, recording, index, well));
        for (const auto& channel : recording.header.WellChannels) {
            const std::int32_t well = channel.ID;
            if (wells.Find(well)->UnitsPerAD == 0)  // as recover writes it for a lost header
                faults.try_emplace(well, m_path + ": UnitsPerADs of " + NameOf(recording, index) + " has 0 for well " +
                                             std::to_string(well));
        }
        StreamSamples(selection, [&](const CSamplePart& part) {
            const auto fault = faults.find(part.wellID);
            take({.recording = &recording.header,
                  .channel = wells.Find(part.wellID),
                  .scaleFault = fault == faults.end() ? std::string_view() : fault->second,
                  .well = part.wellID,
                  .time = part.timeFrom,
                  .tick = part.interval,
                  .position = part.offset,
                  .samples = part.samples});
        });
    });
}

const std::map<std::int32_t, std::uint64_t>& CSampleSource::Counts() {
    if (!m_counts.empty()) return m_counts;
    m_judge.Clear();
    Walk([&](std::size_t index, const CRead& read, const CSampleSelection& selection) {
        Keep(index, read);
        for (const CWellSamples& well : selection.GetWells()) {
            if (well.Samples > 0) m_counts[well.WellID] += well.Samples;
        }
    });
    return m_counts;
}

/// Calls `take` for each chosen recording. Throws `CFailure` after the last samples before damage.
void CSampleSource::Walk(const CTakeSelection& take) {
    m_judge.NoteStart();
    for (std::size_t i = 0; i < m_scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = m_scan.Recordings()[i];
        if (!IsChosen(recording.header) || !recording.IsFinished()) continue;
        Read(NameOf(recording, i), [&] { WalkRecording(i, take); });
    }
    m_judge.Close();
}

void CSampleSource::WalkRecording(std::size_t recording, const CTakeSelection& take) {
    const CRead read = ReadRecording(recording);
    const auto& [index, sound] = read;
    const auto selection = index.Select(
        {.WellIDs = m_choice.plate.wells, .From = m_choice.from, .To = m_choice.to, .Segments = sound.segments});
    m_any = m_any || selection.GetSamples() > 0;
    take(recording, read, selection);
    if (!sound.damage.empty()) RefuseBreak(sound.damage);
}

/// Calls `read`. If the library can't read the file there, throws `CFailure` with `where`.
void CSampleSource::Read(const std::string& where, const std::function<void()>& read) const try {
    read();
} catch (const CExcVXReader&) {
    RefuseBreak(where);
}

CSampleSource::CRead CSampleSource::ReadRecording(std::size_t recording) {
    const auto kept = m_kept.find(recording);
    if (kept != m_kept.end()) return kept->second;
    const CRecordingIndex index = CInternals::ReadIndex(*m_file, recording, {.UpToDamage = true}, CheckInterrupt);
    return {index, Judge(index, recording)};
}

/// Keeps what was read of a recording, unless that takes too much memory.
void CSampleSource::Keep(std::size_t recording, const CRead& read) {
    const std::size_t memory = MemoryOf(read.index);
    if (memory > kMostKept - m_keptMemory) return;
    m_keptMemory += memory;
    m_kept.emplace(recording, read);
}

/// Judges the segments of a recording, and updates the range of times and the list of wells.
CSampleSource::CSound CSampleSource::Judge(const CRecordingIndex& index, std::size_t recording) {
    const CListedWells wells(m_scan.Recordings()[recording]);
    const CSegmentsAt segments(m_scan, index);
    const auto noteJump = [&](std::int64_t end, std::int64_t next) {
        if (next != end) m_judge.NoteEnd(end, recording);
    };
    noteJump(m_scan.DataPosition(m_scan.Recordings()[recording]), segments.Position(0));
    for (std::size_t i = 0; i < index.GetSegmentCount(); ++i) {
        CheckInterrupt();
        CheckMemory();
        const CSegmentAt segment = segments.At(i);
        const std::int32_t well = segment.header.ID;
        noteJump(segment.End(), segment.header.FPosNextSegmentHdr);
        const CRawDataChannelInfo* const channel = wells.Find(well);
        if (channel == nullptr) m_judge.NoteUnlisted(segment, recording);
        if (!m_choice.plate.HasWell(well)) continue;
        const std::string damage = DamageOf(segment, channel, recording);
        if (!damage.empty()) return {i, damage};
        if (!m_choice.plate.wells.empty()) m_wells.insert(well);
        m_first = std::min(m_first, segment.header.TimeFrom);
        m_last = std::max(m_last, segment.header.TimeTo);
    }
    const bool isBroken = !index.GetDamage().empty();
    return {index.GetSegmentCount(), isBroken ? NameOf(m_scan.Recordings()[recording], recording) : ""};
}

/// Returns what can't be read: a segment whose samples aren't in the file or don't belong to it. Otherwise nothing.
std::string CSampleSource::DamageOf(const CSegmentAt& segment, const CRawDataChannelInfo* channel,
                                    std::size_t recording) {
    const auto name = [&] { return NameOf(m_scan.Recordings()[recording], recording); };
    const std::int64_t tick = channel == nullptr ? 0 : channel->Ticks;
    if (segment.End() > m_scan.Size()) return "the last segment of " + name();
    if (m_judge.IsShared(segment, recording)) return name() + ", which leads into another recording,";
    if (channel != nullptr && tick <= 0) m_judge.NoteNoInterval(segment, recording);
    if (m_judge.Admits(segment, tick, recording) && HasTimes(segment, tick)) return {};
    return "the segment of well " + std::to_string(segment.header.ID) + " at byte " + std::to_string(segment.position) +
           " in " + name();
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
        throw CFailure(m_path + " has no well " + ListText(chosen, kMostListed) +
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

void CSampleSource::RefuseBreak(const std::string& where) const {
    throw CFailure(m_path + " is damaged or cut: " + where +
                   " can't be read. Run 'vxfile recover' to save what is intact.");
}

}  // namespace vxfile
