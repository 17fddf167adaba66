#include "tools/vxfile/recover/Survey.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

#include "tools/vxfile/raw/Coverage.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

constexpr const char* kOfSegmentBefore = "FPosNextSegmentHdr of the segment before";

constexpr std::size_t kIDRow = RowOf(kSegmentCells, "ID");
constexpr std::size_t kPointerRow = RowOf(kSegmentCells, "FPosNextSegmentHdr");
constexpr std::size_t kSizeRow = RowOf(kSegmentCells, "Size");

constexpr std::size_t kDataRow = RowOf(kRecordingCells, "FPosRecordingData");
constexpr std::size_t kWellsRow = RowOf(kRecordingCells, "WellIDs");
constexpr std::size_t kNextRecordingRow = RowOf(kRecordingCells, "FPosNextRecordingHdr");

/// Returns the keys of damaged cells in a row, for people.
std::string DamagedKeys(const CDamagedCells& damaged) {
    std::string keys;
    for (std::size_t row = 0; row < kSegmentCells.size(); ++row) {
        if (damaged[row]) keys.append(keys.empty() ? "" : ", ").append(kSegmentCells[row].key);
    }
    return keys;
}

/// Returns where a segment says that the next one stands; nothing if that cell is lost.
std::optional<std::int64_t> NextOf(const CSegmentProbe& probe) {
    return probe.cells.lost[kPointerRow] ? std::nullopt : std::optional(probe.header.FPosNextSegmentHdr);
}

}  // namespace

CSurvey::CSurvey(const CHeaderProbe& probe, bool keepCut, std::function<void(std::int64_t)> reach)
    : m_probe(probe), m_keepCut(keepCut), m_reach(std::move(reach)) {}

CInventory CSurvey::Take() {
    TakeFileHdr();
    while (m_position < m_probe.Size()) {
        m_reach(m_position);
        if (!TakeSegment() && !TakeRecording()) PassDamage();
    }
    TellEnd();
    if (m_astray) m_found.doubts.Add(std::move(*m_astray));
    return std::move(m_found);
}

std::optional<CInventory> CSurvey::TakeAlongChains() {
    TakeFileHdr();
    if (m_found.fileCells.damaged.any()) return std::nullopt;
    m_position = m_nextRecording.value_or(kUnset);
    while (m_position != kUnset) {
        const CRecordingProbe probe = m_probe.Recording(m_position, m_version);
        const std::int64_t data = probe.Position(kDataRow);
        if (!probe.IsWhole() || data == kUnset || !HasRoomForMore()) return std::nullopt;
        BeginRecording(probe, false);
        m_position = data;
        if (!TakeChain()) return std::nullopt;
        m_position = probe.Position(kNextRecordingRow);
    }
    if (!AreApart()) return std::nullopt;
    TellGaps();
    return std::move(m_found);
}

/// Takes the segments of one recording. Without any, its position leads to what follows it.
bool CSurvey::TakeChain() {
    const std::int64_t first = m_position;
    while (m_position != kUnset) {
        m_reach(m_position);
        CSegmentProbe probe = m_probe.Segment(m_position);
        const auto proof = m_proof.Prove(probe);
        if (m_position == first && !proof.holds) return MayBeWithoutSegments(first);
        if (!proof.holds || proof.cut || !probe.IsWhole() || !IsConsistent(probe.header) || !HasRoomForMore())
            return false;
        Accept(probe);
        m_position = probe.header.FPosNextSegmentHdr;
    }
    return true;
}

/// Tells whether a recording may have no segments if its position leads to this place.
bool CSurvey::MayBeWithoutSegments(std::int64_t data) {
    if (data == m_probe.Size()) DoubtThatItWasEmpty();
    return data == m_probe.Size() || m_evidence.IsRecordingPromised(data);
}

/// Tells whether a file of this size can hold one thing more; a chain that leads back into itself ends by this.
bool CSurvey::HasRoomForMore() const {
    const auto things = static_cast<std::int64_t>(m_found.segments.size() + m_found.recordings.size());
    return things <= m_probe.Size() / static_cast<std::int64_t>(kSegmentHdrSize);
}

/// Tells whether no byte belongs to two segments.
bool CSurvey::AreApart() const {
    auto segments = m_found.segments;
    std::ranges::sort(segments, {}, &CFoundSegment::position);
    const auto overlap = [](const CFoundSegment& segment, const CFoundSegment& next) {
        return segment.End() > next.position;
    };
    return std::ranges::adjacent_find(segments, overlap) == segments.end();
}

/// Loses the bytes that no chain leads to.
void CSurvey::TellGaps() {
    CCoverage coverage;
    coverage.Add({0, static_cast<std::int64_t>(kFileHdrSize)});
    for (const CFoundRecording& recording : m_found.recordings)
        coverage.Add({recording.position, recording.position + static_cast<std::int64_t>(recording.bytes.size())});
    for (const CFoundSegment& segment : m_found.segments)
        coverage.Add({segment.position, segment.End()});
    const auto lose = [&](CRange gap) {
        m_found.losses.Add({.from = gap.begin, .to = gap.end, .why = "no position leads there"});
    };
    coverage.Inspect(m_probe.Size(), lose, [](CRange /*overlap*/) {});
}

void CSurvey::TakeFileHdr() {
    std::int64_t begin = 0;
    const auto take = [&] {
        m_found.fileHdr = m_probe.Read(begin, kFileHdrSize);
        m_found.fileCells = DamageOfFileHdr(m_found.fileHdr);
        m_position = begin + static_cast<std::int64_t>(kFileHdrSize);
        return 2 * m_found.fileCells.damaged.count() <= kFileCells.size() || m_probe.LooksLikeHeader(m_position);
    };
    bool isThere = take();
    // Something was put ahead of the file, or its beginning is lost.
    if (!isThere && !m_probe.LooksLikeHeader(0)) {
        begin = Scan().FirstFile();
        isThere = take();
        if (isThere) Lose(0, begin, std::nullopt, "they stand ahead of the file");
    }
    CRawDataFileHdr header;
    std::string bytes = m_found.fileHdr;
    bytes.resize(kFileHdrSize);
    Decode(RecoveredLayout(), bytes, header);
    if (!m_found.fileCells.lost[RowOf(kFileCells, "FileVersion")]) m_version = header.FileVersion;
    if (!m_found.fileCells.lost[RowOf(kFileCells, "FPosFirstRecordingHdr")]) {
        m_evidence.PromiseRecording(header.FPosFirstRecordingHdr);
        m_nextRecording = header.FPosFirstRecordingHdr;
    }
    if (!isThere) m_position = 0;
}

bool CSurvey::TakeRecording() {
    const CRecordingProbe probe = m_probe.Recording(m_position, m_version);
    if (!probe.IsCredible()) return false;
    if (GoesBackForShift(probe.Shift(), probe.End())) return true;
    BeginRecording(probe, probe.Position(kDataRow) == kUnset);
    return true;
}

void CSurvey::BeginRecording(const CRecordingProbe& probe, bool unfinished) {
    CFoundRecording recording{.position = probe.position,
                              .bytes = probe.bytes,
                              .version = probe.version,
                              .cells = probe.cells,
                              .unfinished = unfinished,
                              .header = {}};
    std::string bytes = probe.bytes;
    bytes.resize(kRecordingHdrSize);
    if (!Decode(LayoutOf(probe.version), bytes, recording.header)) recording.header.WellChannels.clear();
    const std::int64_t data = probe.Position(kDataRow);
    if (const auto next = m_evidence.Next()) Compare(kOfSegmentBefore, *next, kUnset);
    if (m_nextRecording) Compare("the position of the next recording", *m_nextRecording, probe.position);
    m_evidence.PromiseRecording(probe.Position(kNextRecordingRow));
    m_nextRecording.reset();
    if (!probe.cells.lost[kNextRecordingRow]) m_nextRecording = recording.header.FPosNextRecordingHdr;
    Learn(recording);
    m_position = probe.End();
    m_found.recordings.push_back(std::move(recording));
    if (data >= 0) Compare("FPosRecordingData", data, m_position);
}

void CSurvey::Learn(const CFoundRecording& recording) {
    m_evidence.BeginRecording(recording.header, !recording.cells.lost[kWellsRow]);
}

bool CSurvey::TakeSegment() {
    CSegmentProbe probe = m_probe.Segment(m_position);
    const auto proof = m_proof.Prove(probe);
    if (!proof.holds) return false;
    const std::int64_t shift = m_shift;
    if (!proof.cut && GoesBackForShift(probe.Shift(), probe.EndOf(probe.header.Size))) return true;
    // The front of a header and the rest of a later one look like a whole one.
    if (m_shift - shift >= static_cast<std::int64_t>(kSegmentHdrSize))
        Doubt(m_position, probe.EndOf(probe.header.Size), probe.header.ID,
              "bytes were taken out ahead of it or within its header: it may be of another well");
    // A segment that no recording stands ahead of: the header at the file's beginning is lost.
    if (m_found.recordings.empty()) MakeUpRecording(m_position, m_position);
    if (proof.cut) {
        AcceptCut(probe);
    } else {
        Accept(probe);
    }
    return true;
}

/// Tells whether neither a segment nor the one behind it belongs to this recording; one alone may be damaged.
bool CSurvey::IsForeign(const CSegmentProbe& probe) const {
    if (m_evidence.Belongs(probe.header)) return false;
    const CSegmentProbe next = m_probe.Segment(probe.EndOf(probe.header.Size));
    return !next.IsWhole() || !m_evidence.Belongs(next.header);
}

void CSurvey::Accept(const CSegmentProbe& probe) {
    if (const auto next = m_evidence.Next()) Compare(kOfSegmentBefore, *next, probe.position);
    if (!probe.cells.lost[kIDRow] && IsConsistent(probe.header)) m_evidence.Tally(probe.header);
    Keep(probe, probe.header.Size, probe.header.TimeTo);
    if (!probe.IsWhole()) DoubtDamaged(probe);
    m_evidence.SetNext(NextOf(probe));
    m_position = probe.EndOf(probe.header.Size);
}

void CSurvey::Keep(const CSegmentProbe& probe, std::int64_t samples, std::int64_t to) {
    m_found.segments.push_back({.position = probe.position,
                                .from = probe.header.TimeFrom,
                                .to = to,
                                .samples = static_cast<std::uint32_t>(samples),
                                .wellID = probe.header.ID,
                                .recording = static_cast<std::uint32_t>(m_found.recordings.size() - 1),
                                .namesWell = !probe.cells.lost[kIDRow]});
}

void CSurvey::DoubtDamaged(const CSegmentProbe& probe) {
    const char* const means = probe.cells.lost.none()    ? ", but legible"
                              : probe.cells.lost[kIDRow] ? ", of which no more is left"
                                                         : ", told by the others";
    Doubt(probe.position, probe.EndOf(probe.header.Size), probe.header.ID,
          "damaged cells: " + DamagedKeys(probe.cells.damaged) + means);
}

/// Holds a position that was told against what is there. What is there counts; -1 may not have been set yet.
void CSurvey::Compare(const std::string& what, std::int64_t told, std::int64_t there) {
    if (told == there) return;
    m_isStraight = false;
    if (told == kUnset || m_astray) return;
    m_astray = Remark(m_position, m_position, std::nullopt,
                      what + " is " + std::to_string(told) + ", but should be " + std::to_string(there) +
                          ": it is damaged, or bytes were put in or taken out");
}

/// Tells what must have stood behind the end of the file. A position is written when what it leads to is there.
void CSurvey::TellEnd() {
    TellEndOf(kOfSegmentBefore, m_evidence.Next(), "segment");
    TellEndOf("the position of the next recording", m_nextRecording, "recording");
    if (m_found.recordings.empty()) return;
    const CFoundRecording& last = m_found.recordings.back();
    if (last.position + static_cast<std::int64_t>(last.bytes.size()) == m_probe.Size()) DoubtThatItWasEmpty();
}

void CSurvey::TellEndOf(const std::string& what, std::optional<std::int64_t> told, const std::string& thing) {
    if (!told || *told < m_probe.Size()) return Compare(what, told.value_or(kUnset), kUnset);
    Lose(m_probe.Size(), *told, std::nullopt,
         "the file ends, but " + what + " leads to byte " + std::to_string(*told) + ": at least one " + thing +
             " is gone");
}

void CSurvey::DoubtThatItWasEmpty() {
    Doubt(m_probe.Size(), m_probe.Size(), std::nullopt,
          "the file ends behind the header of this recording: had it a segment, that is gone");
}

/// The last segment of a file that ends within its samples.
void CSurvey::AcceptCut(const CSegmentProbe& probe) {
    const std::int64_t whole = (m_probe.Size() - probe.Data()) / static_cast<std::int64_t>(sizeof(std::uint16_t));
    const std::int64_t tick = m_evidence.TickOf(probe.header.ID);
    const std::string missing = std::to_string(probe.header.Size - whole) + " of its " +
                                std::to_string(probe.header.Size) + " samples are not in the file";
    if (m_keepCut && whole > 0 && GoesWith(probe.header, tick)) {
        Keep(probe, whole, probe.header.TimeFrom + (whole - 1) * tick);
        Lose(probe.EndOf(whole), probe.EndOf(probe.header.Size), probe.header.ID,
             "the segment was cut: " + missing + ", those before are kept");
    } else {
        Lose(probe.position, m_probe.Size(), probe.header.ID,
             "the segment was cut: " + missing + (whole > 0 && !m_keepCut ? " (--cut keeps the others)" : ""));
    }
    m_position = m_probe.Size();
    m_evidence.SetNext({});
}

/// Goes on behind bytes that are no header that proves itself.
void CSurvey::PassDamage() {
    if (GoBackIntoWhatWasHit()) return;
    const std::int64_t from = m_position;
    const CSegmentProbe probe = m_probe.Segment(from);
    // What leads here is right, however little is left.
    if (m_evidence.Next() == from) m_evidence.SetNext({});
    if (m_nextRecording == from) m_nextRecording.reset();
    if (const auto end = m_proof.EndOfDamaged(probe)) return LoseSegment(probe, *end);
    const std::int64_t next = Scan().Next(from + 1);
    const bool isSettled = SettleWhatGrew(next);
    m_position = next;
    if (isSettled) return;
    if (m_position == m_probe.Size()) {
        Lose(from, m_position, std::nullopt,
             m_probe.LooksLikeHeader(from) ? "the file ends within a header"
                                           : "the file ends behind it without another whole header");
        return;
    }
    const bool isMadeUp = !m_probe.Recording(m_position, m_version).IsCredible() && MakeUpRecording(from, m_position);
    const bool hasRoom = m_position - from >= static_cast<std::int64_t>(kRecordingHdrSize);
    if (!isMadeUp)
        Lose(from, m_position, std::nullopt,
             std::string("no header that proves itself") + (hasRoom ? "; one of a recording may be among it" : ""));
}

void CSurvey::LoseSegment(const CSegmentProbe& probe, std::int64_t end) {
    const auto well = probe.cells.lost[kIDRow] ? std::nullopt : std::optional(probe.header.ID);
    const std::string keys = DamagedKeys(probe.cells.damaged);
    Lose(probe.position, end, well,
         keys.empty() ? "the cells of the segment header contradict one another" : "damaged cells: " + keys);
    m_evidence.SetNext(NextOf(probe));
    m_position = end;
}

/// Where positions begin to lead beside what stands there, and go on so, bytes were put in or taken out ahead. Returns
/// true if the survey went back to what the bytes that are gone had covered.
bool CSurvey::GoesBackForShift(std::optional<std::int64_t> shift, std::int64_t end) {
    if (!shift || *shift == m_shift || ShiftBehind(end) != shift) return false;
    if (*shift > m_shift && GoBackIntoWhatWasHit()) return true;
    if (MayReachFurther()) DoubtSamples(*shift);
    m_shift = *shift;
    return false;
}

/// Nobody knows whether it was behind the last segment or within its samples that positions began to lead elsewhere.
void CSurvey::DoubtSamples(std::int64_t shift) {
    const CFoundSegment& segment = m_found.segments.back();
    Doubt(segment.position, segment.End(), segment.wellID,
          std::string(shift > m_shift ? "bytes were taken out" : "bytes were put in") +
              " behind it or within it: its samples may be wrong from there on");
}

/// Returns how far what stands at a place leads behind its end. The last segment of a recording leads nowhere; the next
/// recording tells.
std::optional<std::int64_t> CSurvey::ShiftBehind(std::int64_t position) const {
    const CSegmentProbe segment = m_probe.Segment(position);
    if (!segment.IsWhole() || !IsConsistent(segment.header)) return m_probe.Recording(position, m_version).Shift();
    const auto shift = segment.Shift();
    return shift ? shift : m_probe.Recording(segment.EndOf(segment.header.Size), m_version).Shift();
}

/// Tells whether the last segment ends where the survey has come to.
bool CSurvey::EndsHere() const { return !m_found.segments.empty() && m_found.segments.back().End() == m_position; }

/// Tells whether bytes that were put in or taken out by here may be of the last segment: no header stands where it
/// ends, or nothing was found in between.
bool CSurvey::MayReachFurther() const {
    if (m_found.segments.empty() || m_found.segments.back().recording + 1 != m_found.recordings.size()) return false;
    return EndsHere() || !m_probe.LooksLikeHeader(m_found.segments.back().End());
}

/// Where bytes were taken out, the next header stands within what had them. Then a segment is lost, unless they are of
/// its header alone, while of a recording header the cells ahead of that place stay. Returns false if there is no such
/// header.
bool CSurvey::GoBackIntoWhatWasHit() {
    if (m_found.recordings.empty()) return false;
    CFoundRecording& recording = m_found.recordings.back();
    const bool isSegment = EndsHere();
    const bool isRecording = recording.position + static_cast<std::int64_t>(recording.bytes.size()) == m_position;
    if ((!isSegment && !isRecording) || m_position <= m_wentBackFrom) return false;
    const std::int64_t hit = isSegment ? m_found.segments.back().position : recording.position;
    const auto next = Scan().NextAhead(hit + 1, m_position, m_shift);
    if (!next) return false;
    m_wentBackFrom = m_position;
    if (!isSegment) {
        Lose(hit, *next, std::nullopt, "bytes were taken out of the recording header");
        LoseCellsBehind(static_cast<std::size_t>(*next - hit), recording.version, recording.cells);
        Learn(recording);
    } else if (!SettleGrownHeader(*next)) {
        Lose(hit, *next, m_found.segments.back().wellID,
             "bytes were taken out of it: the next header stands within it");
        m_found.segments.pop_back();
    }
    m_position = *next;
    return true;
}

/// Where bytes were put in, the next header stands behind the last segment's end. If they were put into its header, its
/// samples begin so much later. Returns true if that accounts for all bytes up to there.
bool CSurvey::SettleWhatGrew(std::int64_t next) {
    if (!EndsHere()) return false;
    const bool isLast = next == m_probe.Size();
    const std::int64_t shift = m_shift + m_position - next;
    if (!isLast && ShiftBehind(next) != shift) return false;
    const bool isHeaderWhole = m_probe.Segment(m_found.segments.back().position).IsWhole();
    if (!isHeaderWhole && SettleGrownHeader(next)) return true;
    if (isLast) return false;
    DoubtSamples(shift);
    m_shift = shift;
    return false;
}

/// Where the next header stands elsewhere since bytes were put into the last segment's header or taken out of it, its
/// samples stand there, too. Returns false if the header doesn't end so much later or earlier.
bool CSurvey::SettleGrownHeader(std::int64_t next) {
    CFoundSegment& segment = m_found.segments.back();
    const std::int64_t by = next - segment.End();
    if (std::abs(by) >= static_cast<std::int64_t>(kSegmentHdrSize) || !EndsSoFarOff(segment, by)) return false;
    segment.grown = static_cast<std::int16_t>(by);
    m_shift -= by;
    Doubt(segment.position, next, segment.wellID,
          std::string(by > 0 ? "bytes were put into its header" : "bytes were taken out of its header") +
              ", behind which its samples stand whole");
    return true;
}

/// Tells whether the last cell of a header stands so many bytes beside its place, or at least its end does.
bool CSurvey::EndsSoFarOff(const CFoundSegment& segment, std::int64_t by) const {
    const CSegmentProbe shifted = m_probe.Segment(segment.position + by);
    if (!shifted.cells.damaged[kSizeRow] && shifted.header.Size == segment.samples) return true;
    const auto width = static_cast<std::int64_t>(kSegmentCells[kSizeRow].width);
    if (by <= -width) return false;  // that end is the one of the cell before
    CDamagedCells ahead = m_probe.Segment(segment.position).cells.damaged;
    ahead.reset(kSizeRow);
    const auto last = segment.position + static_cast<std::int64_t>(kSegmentHdrSize) - 1 + by;
    return ahead.none() && m_probe.Read(last, 1).ends_with(kCellEnd.back());
}

CHeaderScan CSurvey::Scan() const { return {m_probe, m_version, m_evidence, m_reach}; }

/// Segments behind damage may belong to a recording whose header is lost there. They do if a position led to it, if the
/// recording before had ended, or if there is room for a header and the first ones don't belong to that one.
bool CSurvey::MakeUpRecording(std::int64_t from, std::int64_t to) {
    const CSegmentProbe first = m_probe.Segment(to);
    const auto promised = m_evidence.PromisedBehind(from);
    // Where something was put in or taken out, positions lead astray.
    const std::int64_t next = first.header.FPosNextSegmentHdr;
    const bool isInPlace = !first.IsWhole() || next == kUnset || next == first.EndOf(first.header.Size);
    const bool isTold = isInPlace && promised && *promised < to;
    const bool ended = m_evidence.Next() == kUnset;
    const bool hasRoom = to - from >= static_cast<std::int64_t>(kRecordingHdrSize);
    if (!isTold && !ended && !m_found.recordings.empty() && !(hasRoom && IsForeign(first))) return false;
    CRecordingProbe probe = m_probe.Recording(isTold ? *promised : from, m_version);
    if (probe.End() > to || probe.bytes.size() != probe.Size()) {
        probe.bytes.clear();
        probe.cells.damaged.set();
        probe.cells.lost.set();
    }
    BeginRecording(probe, false);
    m_position = to;
    Lose(from, to, std::nullopt, "the recording header is damaged or lost");
    return true;
}

void CSurvey::Lose(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why) {
    m_found.losses.Add(Remark(from, to, wellID, std::move(why)));
}

void CSurvey::Doubt(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why) {
    m_found.doubts.Add(Remark(from, to, wellID, std::move(why)));
}

/// A remark on the recording at hand, if there is one yet.
CRemark CSurvey::Remark(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why) const {
    CRemark remark{.from = from, .to = to, .recording = std::nullopt, .wellID = wellID, .why = std::move(why)};
    if (!m_found.recordings.empty()) remark.recording = static_cast<std::uint32_t>(m_found.recordings.size() - 1);
    return remark;
}

}  // namespace vxfile
