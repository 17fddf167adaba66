#include "tools/vxfile/recover/SegmentProof.h"

#include <algorithm>
#include <array>

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

constexpr std::size_t kPointerRow = RowOf(kSegmentCells, "FPosNextSegmentHdr");
constexpr std::size_t kFromRow = RowOf(kSegmentCells, "TimeFrom");
constexpr std::size_t kToRow = RowOf(kSegmentCells, "TimeTo");
constexpr std::size_t kSizeRow = RowOf(kSegmentCells, "Size");

}  // namespace

CSegmentProof::CVerdict CSegmentProof::Prove(CSegmentProbe& segment) const {
    if (!MakeUp(segment)) return {};
    const bool isWhole = segment.IsWhole();
    const bool goes =
        GoesWith(segment.header, m_evidence.TickOf(segment.header.ID)) || (isWhole && MendContradiction(segment));
    const bool isConsistent = IsConsistent(segment.header);
    const std::int64_t end = segment.EndOf(segment.header.Size);
    if (end > m_probe.Size())
        return {.holds = isWhole && isConsistent && (goes || segment.header.FPosNextSegmentHdr == end), .cut = true};
    // Of whole cells that contradict one another one time may be wrong, which the well's other segments may tell.
    if (!isConsistent && !isWhole) return {};
    return {.holds = (goes && segment.IsWhole()) || IsFollowed(segment)};
}

/// Sets what a lost cell said from the others. Returns false if they don't tell it, or if more than one is lost.
bool CSegmentProof::MakeUp(CSegmentProbe& segment) const {
    struct CMaker {
        std::size_t row;
        bool (CSegmentProof::*make)(CSegmentProbe&) const;
    };
    // What kind it is, whose, and where the next one stands isn't needed to find its end and its times.
    static constexpr std::array<CMaker, 3> kMakers = {{
        {kFromRow, &CSegmentProof::MendTimeFrom},
        {kToRow, &CSegmentProof::MendTimeTo},
        {kSizeRow, &CSegmentProof::MendSize},
    }};
    const CDamagedCells& lost = segment.cells.lost;
    const auto isLost = [&](const CMaker& maker) { return lost[maker.row]; };
    const auto* const maker = std::ranges::find_if(kMakers, isLost);
    return lost.count() <= 1 && (maker == kMakers.end() || (this->*maker->make)(segment));
}

bool CSegmentProof::MendTimeFrom(CSegmentProbe& segment) const {
    CSegmentHdr& header = segment.header;
    const auto from = TimeBehind(header.TimeTo, 1 - header.Size, m_evidence.TickOf(header.ID));
    header.TimeFrom = from.value_or(0);
    return from.has_value();
}

bool CSegmentProof::MendTimeTo(CSegmentProbe& segment) const {
    CSegmentHdr& header = segment.header;
    const auto to = TimeBehind(header.TimeFrom, header.Size - 1, m_evidence.TickOf(header.ID));
    header.TimeTo = to.value_or(0);
    return to.has_value();
}

/// Sets the number of samples from the times. Returns false if those or the well's interval aren't known.
bool CSegmentProof::MendSize(CSegmentProbe& segment) const {
    const std::int64_t tick = m_evidence.TickOf(segment.header.ID);
    const auto span = SpanOf(segment.header);
    if (segment.cells.lost[kFromRow] || segment.cells.lost[kToRow] || tick <= 0 || !span) return false;
    segment.header.Size = static_cast<std::int64_t>(*span) / tick + 1;
    return segment.header.Size > 0 && segment.header.Size <= kMostSamples &&
           segment.EndOf(segment.header.Size) <= m_probe.Size();
}

/// A size that can be read but contradicts the times is damaged if what the times say is confirmed, and it isn't. Where
/// segments are of one length, a header stands at either end: the nearer one counts, as nothing may be jumped over.
bool CSegmentProof::MendContradiction(CSegmentProbe& segment) const {
    CSegmentProbe mended = segment;
    if (!MendSize(mended) || !IsFollowed(mended)) return false;
    if (IsFollowed(segment) && mended.header.Size > segment.header.Size) return false;
    mended.cells.Lose(kSizeRow);
    segment = mended;
    return true;
}

/// Tells whether what stands behind the samples confirms where they end.
bool CSegmentProof::IsFollowed(const CSegmentProbe& segment) const {
    const std::int64_t end = segment.EndOf(segment.header.Size);
    if (end > m_probe.Size() || LeadsNearer(segment, end)) return false;
    const bool knowsNext = !segment.cells.lost[kPointerRow];
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    return (knowsNext && next == end) || m_evidence.IsPromised(end) || m_probe.LooksLikeHeader(end) ||
           end == m_probe.Size() || (knowsNext && next == kUnset && m_probe.LooksLikeEnd(end));
}

/// Tells whether the segment itself leads to a header that stands ahead of `end`.
bool CSegmentProof::LeadsNearer(const CSegmentProbe& segment, std::int64_t end) const {
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    return !segment.cells.lost[kPointerRow] && next >= segment.Data() && next < end && m_probe.Segment(next).IsWhole();
}

std::optional<std::int64_t> CSegmentProof::EndOfDamaged(const CSegmentProbe& segment) const {
    if (2 * segment.cells.lost.count() > kSegmentCells.size()) return std::nullopt;
    std::array<std::int64_t, 3> ends = {kUnset, kUnset, kUnset};
    if (!segment.cells.lost[kSizeRow]) ends[0] = segment.EndOf(segment.header.Size);
    if (!segment.cells.lost[kPointerRow]) ends[1] = segment.header.FPosNextSegmentHdr;
    CSegmentProbe mended = segment;
    if (MendSize(mended)) ends[2] = mended.EndOf(mended.header.Size);
    std::ranges::sort(ends);
    const auto isEnd = [&](std::int64_t end) {
        return end >= segment.Data() && (end == m_probe.Size() || m_probe.LooksLikeHeader(end));
    };
    const auto* const end = std::ranges::find_if(ends, isEnd);
    return end == ends.end() ? std::nullopt : std::optional(*end);
}

}  // namespace vxfile
