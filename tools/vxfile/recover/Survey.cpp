#include "tools/vxfile/recover/Survey.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "tools/vxfile/recover/HeaderScan.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

constexpr std::size_t kTypeRow = RowOf(kSegmentCells, "Type");
constexpr std::size_t kPointerRow = RowOf(kSegmentCells, "FPosNextSegmentHdr");
constexpr std::size_t kSizeRow = RowOf(kSegmentCells, "Size");
constexpr std::size_t kIDRow = RowOf(kSegmentCells, "ID");

constexpr std::size_t kDataRow = RowOf(kRecordingCells, "FPosRecordingData");
constexpr std::size_t kNextRecordingRow = RowOf(kRecordingCells, "FPosNextRecordingHdr");

/// Returns the keys of damaged cells in a row, for people.
std::string DamagedKeys(const CDamagedCells& damaged) {
    std::string keys;
    for (std::size_t row = 0; row < kSegmentCells.size(); ++row) {
        if (damaged[row]) keys.append(keys.empty() ? "" : ", ").append(kSegmentCells[row].key);
    }
    return keys;
}

}  // namespace

CSurvey::CSurvey(const vxfileio::CFile& file, bool keepCut, std::function<void(std::int64_t)> reach)
    : m_probe(file), m_keepCut(keepCut), m_reach(std::move(reach)) {}

CInventory CSurvey::Take() {
    TakeFileHdr();
    while (m_position < m_probe.Size()) {
        m_reach(m_position);
        if (!TakeSegment() && !TakeRecording()) PassDamage();
    }
    return std::move(m_found);
}

std::optional<CInventory> CSurvey::TakeAlongChains() {
    TakeFileHdr();
    if (m_found.fileDamage.any()) return std::nullopt;
    m_position = *m_promised.begin();
    while (m_position != kUnset) {
        const CRecordingProbe probe = m_probe.Recording(m_position, m_version);
        const std::int64_t data = probe.Position(kDataRow);
        if (probe.damaged.any() || data == kUnset || !HasRoomForMore()) return std::nullopt;
        BeginRecording(probe, false);
        m_position = data;
        if (!TakeChain()) return std::nullopt;
        m_position = probe.Position(kNextRecordingRow);
    }
    if (!AreApart()) return std::nullopt;
    return std::move(m_found);
}

/// Takes the segments of one recording. Without any, its position leads to what follows it.
bool CSurvey::TakeChain() {
    const std::int64_t first = m_position;
    while (m_position != kUnset) {
        m_reach(m_position);
        CSegmentProbe probe = m_probe.Segment(m_position);
        const CProof proof = Prove(probe);
        if (m_position == first && !proof.holds) return !m_probe.LooksLikeHeader(first) || m_promised.contains(first);
        if (!proof.holds || proof.cut || probe.damaged.any() || !HasRoomForMore()) return false;
        Accept(probe, proof);
        m_position = probe.header.FPosNextSegmentHdr;
    }
    return true;
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
        return segment.position + static_cast<std::int64_t>(kSegmentHdrSize) + 2 * std::int64_t{segment.samples} >
               next.position;
    };
    return std::ranges::adjacent_find(segments, overlap) == segments.end();
}

void CSurvey::TakeFileHdr() {
    m_found.fileHdr = m_probe.Read(0, kFileHdrSize);
    m_found.fileDamage = DamagedFileCells(m_found.fileHdr);
    CRawDataFileHdr header;
    std::string bytes = m_found.fileHdr;
    bytes.resize(kFileHdrSize);
    Decode(bytes, header);
    if (!m_found.fileDamage[RowOf(kFileCells, "FileVersion")]) m_version = header.FileVersion;
    if (!m_found.fileDamage[RowOf(kFileCells, "FPosFirstRecordingHdr")])
        m_promised.insert(header.FPosFirstRecordingHdr);
    m_position = static_cast<std::int64_t>(kFileHdrSize);
}

bool CSurvey::TakeRecording() {
    const CRecordingProbe probe = m_probe.Recording(m_position, m_version);
    if (!probe.IsMostlyWhole()) return false;
    BeginRecording(probe, probe.Position(kDataRow) == kUnset);
    return true;
}

void CSurvey::BeginRecording(const CRecordingProbe& probe, bool unfinished) {
    CFoundRecording recording{.position = probe.position,
                              .bytes = probe.bytes,
                              .version = probe.version,
                              .damaged = probe.damaged,
                              .unfinished = unfinished,
                              .header = {},
                              .ticks = {}};
    std::string bytes = probe.bytes;
    bytes.resize(kRecordingHdrSize);
    if (!Decode(bytes, probe.version, recording.header)) recording.header.WellChannels.clear();
    m_promised.insert(probe.Position(kNextRecordingRow));
    m_next.reset();
    m_position = probe.End();
    m_found.recordings.push_back(std::move(recording));
}

bool CSurvey::TakeSegment() {
    CSegmentProbe probe = m_probe.Segment(m_position);
    const CProof proof = Prove(probe);
    if (!proof.holds) return false;
    // A segment that no recording stands ahead of: the header at the file's beginning is lost.
    if (m_found.recordings.empty()) MakeUpRecording(m_position, m_position);
    if (proof.cut) {
        AcceptCut(probe);
    } else {
        Accept(probe, proof);
    }
    return true;
}

/// Proves a segment that stands where one is expected. The cells that others make up for may be damaged: what kind it
/// is, where the next one stands, and, if its well's interval is known, how many samples it has.
CSurvey::CProof CSurvey::Prove(CSegmentProbe& probe) const {
    CDamagedCells dispensable;
    dispensable[kTypeRow] = dispensable[kPointerRow] = dispensable[kSizeRow] = true;
    const bool damaged = probe.damaged.any();
    if (probe.damaged.count() > 1 || (probe.damaged & ~dispensable).any()) return {};
    if (probe.damaged[kSizeRow] && !MendSize(probe)) return {};
    if (!IsConsistent(probe.header)) return {};

    const std::int64_t tick = TickOf(probe.header.ID);
    const bool goes = GoesWith(probe.header, tick);
    if (probe.EndOf(probe.header.Size) > m_probe.Size()) {
        const bool linked = probe.header.FPosNextSegmentHdr == probe.EndOf(probe.header.Size);
        return {.holds = !damaged && (goes || linked), .disagrees = tick > 0 && !goes, .cut = true};
    }
    if (damaged || !goes) return {.holds = IsFollowed(probe), .disagrees = tick > 0 && !goes, .cut = false};
    return {.holds = true};
}

/// Sets the number of samples from the times. Returns false if the well's interval isn't known.
bool CSurvey::MendSize(CSegmentProbe& probe) const {
    const std::int64_t tick = TickOf(probe.header.ID);
    const auto span = SpanOf(probe.header);
    if (tick <= 0 || !span) return false;
    probe.header.Size = static_cast<std::int64_t>(*span) / tick + 1;
    return probe.header.Size > 0 && probe.header.Size <= INT64_C(0xFFFFFFFF) &&
           probe.EndOf(probe.header.Size) <= m_probe.Size();
}

/// Tells whether what stands behind the samples confirms where they end.
bool CSurvey::IsFollowed(const CSegmentProbe& probe) const {
    const std::int64_t end = probe.EndOf(probe.header.Size);
    if (end == m_probe.Size()) return true;
    return (probe.IsWhole("FPosNextSegmentHdr") && probe.header.FPosNextSegmentHdr == end) ||
           m_probe.LooksLikeHeader(end);
}

std::int64_t CSurvey::TickOf(std::int32_t wellID) const {
    if (m_found.recordings.empty()) return 0;
    const CFoundRecording& recording = m_found.recordings.back();
    const auto& wells = recording.header.WellChannels;
    const auto well = std::ranges::find(wells, wellID, &CRawDataChannelInfo::ID);
    return well == wells.end() ? 0 : well->Ticks;
}

void CSurvey::Accept(const CSegmentProbe& probe, const CProof& proof) {
    Tally(probe, proof.disagrees);
    m_found.segments.push_back({.position = probe.position,
                                .samples = static_cast<std::uint32_t>(probe.header.Size),
                                .wellID = probe.header.ID,
                                .recording = static_cast<std::uint32_t>(m_found.recordings.size() - 1),
                                .disagrees = proof.disagrees,
                                .cut = false});
    m_next.reset();
    if (!probe.damaged[kPointerRow]) m_next = probe.header.FPosNextSegmentHdr;
    m_position = probe.EndOf(probe.header.Size);
}

/// The last segment of a file that ends within its samples.
void CSurvey::AcceptCut(const CSegmentProbe& probe) {
    const std::int64_t whole = (m_probe.Size() - probe.Data()) / static_cast<std::int64_t>(sizeof(std::uint16_t));
    const bool keep = m_keepCut && whole > 0 && GoesWith(probe.header, TickOf(probe.header.ID));
    const std::string missing = std::to_string(probe.header.Size - whole) + " of its " +
                                std::to_string(probe.header.Size) + " samples are not in the file";
    if (keep) {
        m_found.segments.push_back({.position = probe.position,
                                    .samples = static_cast<std::uint32_t>(whole),
                                    .wellID = probe.header.ID,
                                    .recording = static_cast<std::uint32_t>(m_found.recordings.size() - 1),
                                    .disagrees = false,
                                    .cut = true});
        Lose(probe.EndOf(whole), probe.EndOf(probe.header.Size), probe.header.ID,
             "the segment was cut: " + missing + ", those before are kept");
    } else {
        Lose(probe.position, m_probe.Size(), probe.header.ID,
             "the segment was cut: " + missing + (whole > 0 && !m_keepCut ? " (--cut keeps the others)" : ""));
    }
    m_position = m_probe.Size();
}

void CSurvey::Tally(const CSegmentProbe& probe, bool disagrees) {
    const auto samples = static_cast<std::uint64_t>(probe.header.Size);
    const std::uint64_t span = SpanOf(probe.header).value_or(0);
    CTickBounds& bounds = m_found.recordings.back().ticks[probe.header.ID];
    bounds.atLeast = std::max(bounds.atLeast, span / samples + 1);
    if (samples > 1) bounds.atMost = std::min(bounds.atMost, span / (samples - 1));
    if (disagrees) ++bounds.disagreeing;
}

/// Goes on behind bytes that are no header that proves itself.
void CSurvey::PassDamage() {
    const std::int64_t from = m_position;
    const CSegmentProbe probe = m_probe.Segment(from);
    if (const auto end = EndOfDamaged(probe)) {
        const auto well = probe.damaged[kIDRow] ? std::nullopt : std::optional(probe.header.ID);
        const std::string keys = DamagedKeys(probe.damaged);
        Lose(from, *end, well,
             keys.empty() ? "the cells of the segment header contradict one another" : "damaged cells: " + keys);
        m_next = probe.damaged[kPointerRow] ? std::nullopt : std::optional(probe.header.FPosNextSegmentHdr);
        m_position = *end;
        return;
    }
    const auto isPromised = [this](std::int64_t at) { return m_promised.contains(at) || (m_next && *m_next == at); };
    m_position = CHeaderScan(m_probe, m_version, isPromised, m_reach).Next(from + 1);
    const std::size_t losses = m_found.losses.size();
    if (m_position == m_probe.Size()) {
        Lose(from, m_position, std::nullopt, "the file ends behind it without another whole header");
        return;
    }
    if (!m_probe.Recording(m_position, m_version).IsMostlyWhole()) MakeUpRecording(from, m_position);
    if (losses == m_found.losses.size()) Lose(from, m_position, std::nullopt, "no header that proves itself");
}

/// Returns where a segment with a damaged header ends, as far as one of its cells and what follows agree about it.
std::optional<std::int64_t> CSurvey::EndOfDamaged(const CSegmentProbe& probe) const {
    if (2 * probe.damaged.count() > kSegmentCells.size()) return std::nullopt;
    std::array<std::int64_t, 3> ends = {kUnset, kUnset, kUnset};
    if (!probe.damaged[kSizeRow]) ends[0] = probe.EndOf(probe.header.Size);
    if (!probe.damaged[kPointerRow]) ends[1] = probe.header.FPosNextSegmentHdr;
    CSegmentProbe mended = probe;
    if (MendSize(mended)) ends[2] = mended.EndOf(mended.header.Size);
    for (const std::int64_t end : ends) {
        if (end < probe.Data() || end > m_probe.Size()) continue;
        if (end == m_probe.Size() || m_probe.LooksLikeHeader(end)) return end;
    }
    return std::nullopt;
}

/// Segments behind damage may belong to a recording whose header is lost there. They do if a position led to it, or if
/// the recording before had ended.
void CSurvey::MakeUpRecording(std::int64_t from, std::int64_t to) {
    const auto promised = m_promised.lower_bound(from);
    const bool isTold = promised != m_promised.end() && *promised < to;
    const bool ended = m_next && *m_next == kUnset;
    if (!isTold && !ended && !m_found.recordings.empty()) return;
    CRecordingProbe probe = m_probe.Recording(isTold ? *promised : from, m_version);
    if (probe.End() > to || probe.bytes.size() != probe.Size()) {
        probe.bytes.clear();
        probe.damaged.set();
    }
    BeginRecording(probe, false);
    m_position = to;
    Lose(from, to, std::nullopt, "the recording header is damaged or lost");
}

void CSurvey::Lose(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why) {
    CLoss loss{.from = from, .to = to, .recording = std::nullopt, .wellID = wellID, .why = std::move(why)};
    if (!m_found.recordings.empty()) loss.recording = static_cast<std::uint32_t>(m_found.recordings.size() - 1);
    m_found.Lose(std::move(loss));
}

}  // namespace vxfile
