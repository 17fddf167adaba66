#include "recovery/Costs.h"

#include <algorithm>
#include <bit>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

bool IsRecordingHdrSize(std::int64_t bytes) {
    return std::ranges::find(FormsOf(EKind::Recording), bytes, &CForm::size) != FormsOf(EKind::Recording).end();
}

/// Returns how many bytes are missing before a segment by its own position; negative if there are too many.
std::int64_t MissingByOwnPosition(const CNode& node) {
    const std::int64_t shift = node.parent->piece.shift;
    return node.Candidate().OwnShift().value_or(shift) - shift;
}

}  // namespace

int GapCost(std::int64_t bytes) {
    return bytes <= 0 ? 0 : costs::kGap + 2 * static_cast<int>(std::bit_width(static_cast<std::uint64_t>(bytes)));
}

int PartsCost(const CCandidate& candidate, std::int64_t end) {
    if (candidate.IsCutShort()) return costs::kCutHeader;
    if (candidate.moved != 0) return costs::kValue;
    return candidate.kind == EKind::Recording && candidate.begin < end ? costs::kNoBeginning : 0;
}

int UnconfirmedCost(const CNode& node, std::int64_t gap) {
    if (!node.Is(EKind::Segment)) return 0;
    const CCandidate& segment = node.Candidate();
    if (segment.IsWhole() && node.piece.made == EMade::None) return 0;
    // Bytes that were put into a damaged header move its samples.
    if (gap < segment.end - segment.begin && !segment.IsWhole() && segment.moved == 0) return costs::kUnconfirmed;
    if (node.piece.IsShown()) return 0;
    return segment.next == kUnset && IsRecordingHdrSize(gap) ? 0 : costs::kUnconfirmed;
}

bool IsNextRecordingPassed(const CNode& node, std::int64_t shift) {
    if (!node.Is(EKind::Segment) || !node.HasRecordingHdr()) return false;
    const std::int64_t next = node.recording->from;
    return IsPosition(next) && next >= node.parent->piece.end + node.parent->piece.shift &&
           next < node.Candidate().begin + shift;
}

bool MayPassNextRecording(const CNode& node) {
    const std::int64_t shift = node.parent->piece.shift;
    return IsNextRecordingPassed(node, shift) ||
           IsNextRecordingPassed(node, node.Candidate().OwnShift().value_or(shift));
}

bool HasMixedHeader(const CNode& node) {
    const CCandidate& candidate = node.Candidate();
    const bool isOfEnd = candidate.IsJoined() && candidate.movedRow <= candidate.form->RowOf("FPosRecordingData");
    if (node.piece.ownShift == kLost || !(node.unproven == EUnproven::Joined || isOfEnd)) return false;
    const std::int64_t by = node.piece.ownShift - node.parent->piece.shift;
    return by > 0 || -by > node.gap;
}

int CCosts::SameRecordingCost(const CNode& node) const {
    int cost = node.parent->IsLastSegment() ? costs::kPosition : 0;
    if ((node.gap > 0 || MissingByOwnPosition(node) != 0) && node.recording != nullptr && IsForeign(node))
        cost += costs::kForeign;
    return cost;
}

int CCosts::LostRecordingCost(const CNode& node) const {
    const bool hasRoom = node.gap + MissingByOwnPosition(node) >= LeastSizeOf(EKind::Recording);
    const bool hasEnded = node.parent->IsLastSegment() && (node.gap > 0 || MissingByOwnPosition(node) != 0);
    const bool isFirst = node.parent->Is(EKind::File) && node.gap > 0;
    return (hasRoom || hasEnded || isFirst || IsHeaderForeign(node) ? costs::kLostRecording : costs::kForcedRecording) +
           (node.parent->ExpectsSegment() && IsRecordingHdrSize(node.gap) ? costs::kPosition : 0);
}

bool CCosts::ShiftsByGap(const CNode& node) const {
    const std::int64_t by = node.piece.ownShift - node.parent->piece.shift;
    if (by > 0 && node.parent->unproven == EUnproven::Cut) return true;
    return node.gap > 0 && (by == -node.gap || node.piece.ownShift == node.earlierShift ||
                            by == OverlapOf(node.parent->piece.end, node.Candidate().begin));
}

bool CCosts::IsHeaderForeign(const CNode& node) const {
    const auto shift = node.HasRecordingHdr() ? node.recording->OwnShift() : std::nullopt;
    return shift && shift != node.earlierShift && node.Candidate().OwnShift() == node.earlierShift && IsForeign(node);
}

bool CCosts::IsForeign(const CNode& node) const {
    const CCandidate* const segment = node.piece.candidate;
    if (Belongs(*node.parent, *segment)) return false;
    const CCandidate* const next = segment + 1;
    return next == m_candidates.list.data() + m_candidates.list.size() || next->kind != EKind::Segment ||
           !next->IsWhole() || !Belongs(*node.parent, *next);
}

bool CCosts::Belongs(const CNode& parent, const CCandidate& segment) const {
    const CWellList& wells = m_candidates.WellsOf(parent.recording);
    if (!wells.wells.empty() && !wells.Lists(segment.well)) return false;
    const std::int64_t tick = wells.TickOf(segment);
    if (tick > 0 && !TicksOf(segment.from, segment.to, segment.size).Has(tick)) return false;
    constexpr int kMostSteps = 256;
    const CNode* node = &parent;
    for (int i = 0; i < kMostSteps && node->Is(EKind::Segment); ++i) {
        if (node->Candidate().well == segment.well) return segment.from > node->Candidate().to;
        node = node->parent.get();
    }
    return true;
}

std::int64_t CCosts::OverlapOf(std::int64_t begin, std::int64_t next) const {
    const CCandidate* const segment = m_candidates.WholeAt(EKind::Segment, begin);
    return segment == nullptr ? 0 : std::max<std::int64_t>(0, segment->DataEnd() - next);
}

}  // namespace vxfileio::recovery
