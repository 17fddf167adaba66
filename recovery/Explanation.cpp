#include "recovery/Explanation.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <optional>

#include "recovery/Costs.h"
#include "recovery/Node.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// The recording of segments whose recording header is lost.
constexpr CCandidate kLostRecording;

class CExplainer {
 public:
    CExplainer(const CCandidates& candidates, std::int64_t size, const CReach& reach)
        : m_candidates(candidates),
          m_costs(candidates),
          m_size(size),
          m_reach(reach),
          m_open{std::make_shared<CNode>()} {}

    std::vector<CPiece> Run() {
        for (const CCandidate& candidate : m_candidates.list) {
            m_reach(candidate.begin);
            Release(candidate.claim);
            Extend(candidate);
            m_whole += candidate.IsWhole() ? 1 : 0;
        }
        Release(m_size);  // what ends later stays closed: a header that the end of the input cuts explains nothing
        return Path();
    }

 private:
    static constexpr std::size_t kMostOpen = 16;
    static constexpr int kMostFiles = 16;
    static constexpr std::size_t kMostPending = std::size_t{1} << 14;

    /// Opens the nodes that end at or before a position: something can follow them now.
    void Release(std::int64_t position) {
        while (!m_pending.empty() && m_pending.begin()->first <= position) {
            const CNodePtr node = m_pending.begin()->second;
            m_pending.erase(m_pending.begin());
            if (m_whole > node->wholeBefore) node->cost += costs::kHeaderWithin + CostWithin(*node, position);
            m_open.insert(std::ranges::upper_bound(m_open, node->cost, {}, &CNode::cost), node);
            if (m_open.size() > kMostOpen) m_open.pop_back();
        }
    }

    /// Returns the cost of the file that begins within the samples of a node, if they end where another header begins:
    /// its headers count, too.
    std::int64_t CostWithin(const CNode& node, std::int64_t next) const {
        const bool isSound = node.Candidate().IsWhole() && node.piece.made == EMade::None;
        if ((node.piece.end != next && !isSound) || node.piece.isCut || m_open.empty()) return 0;
        const CNode* inner = m_open.front()->file;
        for (int i = 0; i < kMostFiles && inner != nullptr; ++i, inner = inner->parent->file) {
            if (inner->Candidate().begin < node.Candidate().end) return 0;
            const CNode* const before = inner->parent.get();
            if (before->piece.end <= node.Candidate().begin) return m_open.front()->cost - before->cost;
        }
        return 0;
    }

    /// Offers all ways to a candidate. Once one needs no assumption, clearly costlier ways are skipped.
    void Extend(const CCandidate& candidate) {
        m_offers.clear();
        std::int64_t most = std::numeric_limits<std::int64_t>::max();
        for (const CNodePtr& parent : m_open) {
            if (parent->cost > most) break;
            Follow(parent, candidate);
            const bool isFree = !m_offers.empty() && m_offers.front().piece.ownShift != kLost &&
                                m_offers.front().cost == parent->cost + costs::kHeader;
            if (isFree) most = std::min(most, parent->cost + costs::kNearlyEqual);
            if (candidate.kind != EKind::File && parent->cost + costs::kFileWithin <= most)
                FollowAround(*parent, candidate);
        }
        for (const CNode& offer : m_offers)
            Add(std::make_shared<CNode>(offer));
    }

    /// Offers the ways in which a candidate can continue a file around the one that a node is in, which is the samples
    /// of a segment whose header is lost.
    void FollowAround(const CNode& inner, const CCandidate& candidate) {
        const CNode* file = inner.file;
        for (int i = 0; i < kMostFiles && file != nullptr; ++i, file = file->parent->file) {
            const bool isLoss = file->gap > 0 || file->parent->Candidate().moved < 0;
            if (!isLoss || !GoesOn(*file->parent, inner, candidate)) continue;
            const auto around = std::make_shared<CNode>(*file->parent);
            around->cost = inner.cost;
            around->goesOn = true;
            Follow(around, candidate);
        }
    }

    /// Returns whether a header can continue a file after an inner one: it has the same shift, isn't at an earlier
    /// place than where the next header should be, or is the last segment, of a well that the inner file doesn't
    /// continue.
    bool GoesOn(const CNode& node, const CNode& inner, const CCandidate& candidate) const {
        if (node.recording == nullptr) return false;
        if (candidate.kind == EKind::Segment && candidate.next == kUnset)
            return m_candidates.WellsOf(node.recording).Lists(candidate.well) &&
                   (inner.IsLastSegment() || !m_candidates.WellsOf(inner.recording).Lists(candidate.well));
        const auto shift = candidate.OwnShift();
        const std::int64_t next = node.Candidate().next;
        return candidate.IsWhole() && shift &&
               (shift == node.piece.shift || (IsPosition(next) && candidate.begin + *shift >= next));
    }

    /// Adds a way that ends later. If too many wait for their end, the last one to end is dropped.
    void Add(const CNodePtr& node) {
        if (node->Is(EKind::File) && node->Candidate().begin > 0) node->file = node.get();
        if (node->Is(EKind::Recording)) node->recording = &node->Candidate();
        node->wholeBefore = m_whole + (node->Candidate().IsWhole() ? 1 : 0);
        // Of those that end together, the last one to begin comes first: it may be within another one.
        m_pending.emplace_hint(m_pending.lower_bound(node->piece.end), node->piece.end, node);
        if (m_pending.size() > kMostPending) m_pending.erase(std::prev(m_pending.end()));
    }

    /// Offers the ways in which a candidate can follow a node.
    void Follow(const CNodePtr& parent, const CCandidate& candidate) {
        const std::int64_t end = parent->piece.end;
        if (end > candidate.claim) return;
        CNode node{.piece = {.candidate = &candidate},
                   .parent = parent,
                   .unproven = parent->unproven,
                   .file = parent->file,
                   .recording = parent->recording};
        node.earlierShift =
            candidate.moved != 0 || candidate.kind == EKind::Recording ? parent->piece.shift : parent->earlierShift;
        node.gap = end <= candidate.begin ? candidate.begin - end : candidate.claim - end;
        node.cost = parent->cost + (parent->goesOn ? costs::kFileWithin : GapCost(node.gap)) +
                    costs::kHeader * candidate.whole / (candidate.whole + candidate.damaged) +
                    (end == candidate.begin ? 0 : UnconfirmedCost(*parent, node.gap)) + PartsCost(candidate, end);
        candidate.kind == EKind::Segment ? FollowWithSegment(node) : FollowWithHeader(node);
    }

    void FollowWithHeader(CNode node) {
        const CCandidate& header = node.Candidate();
        node.piece.end = header.end;
        if (header.kind == EKind::File) {
            node.recording = nullptr;
            node.unproven = EUnproven::None;
            node.piece.shift = -header.begin - header.moved;
            node.piece.ownShift = 0;
            return Offer(node);
        }
        if (node.parent->ExpectsSegment() && !node.parent->goesOn) node.cost += costs::kPosition;
        if (node.HasRecordingHdr() && node.recording->form != header.form) node.cost += costs::kVersion;
        OfferShifts(node);
    }

    void FollowWithSegment(CNode node) {
        const int same = m_costs.SameRecordingCost(node);
        if (node.recording != nullptr) OfferReadings(node, same);
        if (node.recording != nullptr && same == 0 && !MayPassNextRecording(node)) return;
        if (node.parent->goesOn && node.Candidate().OwnShift() != node.parent->piece.shift) return;
        const int lost = m_costs.LostRecordingCost(node);
        node.piece.lostRecording = true;
        node.unproven = EUnproven::None;
        node.recording = &kLostRecording;
        OfferReadings(node, lost);
    }

    /// Offers each way to read a segment, with at most one computed value.
    void OfferReadings(CNode node, int cost) {
        const CCandidate& segment = node.Candidate();
        if (!IsReadable(node)) return;
        node.cost += cost;
        const std::int64_t tick = m_candidates.WellsOf(node.recording).TickOf(segment);
        const CTickRange intervals = TicksOf(segment.from, segment.to, segment.size);
        const auto byTimes = SizeByTimes(node, tick);
        if (segment.noSize) {
            if (byTimes) OfferReading(node, *byTimes, EMade::Size);
        } else if (segment.noFrom || segment.noTo) {
            // A single segment doesn't determine the interval.
            if (!node.piece.lostRecording) OfferReading(node, segment.size, segment.noFrom ? EMade::From : EMade::To);
        } else if (tick > 0 ? intervals.Has(tick) : !intervals.IsEmpty()) {
            OfferReading(node, segment.size, EMade::None);
        } else {
            OfferReading(node, segment.size, EMade::Either);
            if (byTimes) OfferReading(node, *byTimes, EMade::Size);
        }
    }

    /// Returns the number of samples that a segment has by its times and the interval, or if that isn't known, by its
    /// position, if the times fit. Nothing if no segment can have that many.
    static std::optional<std::int64_t> SizeByTimes(const CNode& node, std::int64_t tick) {
        const CCandidate& segment = node.Candidate();
        if (tick > 0) {
            const auto count = SampleCount(segment.from, segment.to, tick);
            if (!count || *count > std::uint64_t{kMostSamples}) return std::nullopt;
            return static_cast<std::int64_t>(*count);
        }
        if (!IsPosition(segment.next)) return std::nullopt;
        const std::int64_t room = (segment.next - node.parent->piece.shift - segment.end) / 2;
        const bool fits = room <= kMostSamples && !TicksOf(segment.from, segment.to, room).IsEmpty();
        return fits ? std::optional(room) : std::nullopt;
    }

    /// Returns whether at most one cell of a segment is lost. Next to a place where bytes were removed, a cell may be a
    /// mixture of two.
    bool IsReadable(const CNode& node) const {
        const CCandidate& segment = node.Candidate();
        const bool knowsWells = !m_candidates.WellsOf(node.recording).wells.empty();
        const auto isLost = {segment.noID, segment.noFrom, segment.noTo, segment.noSize, segment.next == kLost};
        return std::ranges::count(isLost, true) <= (segment.moved == 0 ? 1 : 0) &&
               (!segment.noID || segment.damaged <= 1 || knowsWells);
    }

    void OfferReading(CNode node, std::int64_t samples, EMade made) {
        const CCandidate& segment = node.Candidate();
        node.piece.samples = samples;
        node.piece.made = made;
        node.piece.end = segment.end + 2 * samples;
        node.cost += made == EMade::None ? 0 : costs::kValue;
        if (node.piece.end > m_size) {
            if (!segment.IsWhole() || made != EMade::None) return;
            node.piece.isCut = true;
            node.cost += costs::kCut;
        }
        OfferShifts(node);
    }

    /// Offers a node as it is if its position has the current shift. Otherwise either this position is wrong, or all
    /// positions are from here on.
    void OfferShifts(CNode node) {
        const std::int64_t position = node.Candidate().next;
        const std::int64_t moved = node.Candidate().moved;
        const std::int64_t shift = node.parent->piece.shift;
        const std::int64_t end = node.piece.end;
        if (node.piece.isCut) node.piece.end = m_size;
        if (IsPosition(position)) node.piece.ownShift = position - (end - moved);
        if (position == kLost || position == kUnset || node.piece.ownShift == shift) return OfferWith(node, shift);
        if (HasMixedHeader(node)) node.cost += costs::kMixedHeader;
        CNode wrong = node;
        wrong.cost += costs::kPosition;
        OfferWith(wrong, shift);
        if (node.piece.ownShift == kLost) return;
        const bool isByGap = m_costs.ShiftsByGap(node);
        node.cost += isByGap ? costs::kShiftByGap : costs::kShift;
        if (isByGap) node.earlierShift = shift;
        OfferWith(node, node.piece.ownShift);
    }

    /// Offers a node from which on positions have a shift. If its own position has another one, it is wrong.
    void OfferWith(CNode node, std::int64_t shift) {
        const CCandidate& candidate = node.Candidate();
        if (candidate.kind == EKind::Recording) {
            // Its own position confirms nothing: it may be in the first part.
            node.unproven = candidate.IsJoined()     ? EUnproven::Joined
                            : candidate.IsCutShort() ? EUnproven::Cut
                                                     : EUnproven::None;
        } else if (node.piece.ownShift == shift) {
            node.unproven = EUnproven::None;
        }
        if (!node.piece.lostRecording && IsNextRecordingPassed(node, shift)) node.cost += costs::kPosition;
        node.piece.shift = shift - candidate.moved;
        Offer(node);
    }

    /// Keeps the cheaper of two ways to the same state.
    void Offer(const CNode& node) {
        const auto isSame = [&](const CNode& other) {
            return other.piece.end == node.piece.end && other.piece.made == node.piece.made &&
                   other.piece.shift == node.piece.shift && other.piece.samples == node.piece.samples &&
                   other.unproven == node.unproven;
        };
        const auto same = std::ranges::find_if(m_offers, isSame);
        if (same == m_offers.end()) return m_offers.push_back(node);
        const std::int64_t costlier = std::max(node.cost, same->cost);
        if (node.cost < same->cost) {
            *same = node;
            same->other = costlier;
        } else {
            same->other = std::min(same->other, costlier);
        }
    }

    /// Returns the pieces of the best explanation.
    std::vector<CPiece> Path() const {
        const auto cost = [&](const CNodePtr& node) {
            const std::int64_t gap = m_size - node->piece.end;
            return node->cost + GapCost(gap) + (gap > 0 ? UnconfirmedCost(*node, gap) : 0);
        };
        std::vector<CPiece> pieces;
        std::int64_t shown = kLost;
        std::int64_t nextRecording = kLost;
        const CNode* node = std::ranges::min_element(m_open, {}, cost)->get();
        for (; node->piece.candidate != nullptr; node = node->parent.get()) {
            CPiece& piece = pieces.emplace_back(node->piece);
            piece.isAmbiguous = node->other < std::numeric_limits<std::int64_t>::max() &&
                                node->other - node->cost <= costs::kNearlyEqual;
            piece.shiftBefore = node->parent->piece.shift;
            piece.isAstray = piece.ownShift != kLost && piece.ownShift != piece.shiftBefore && shown == kLost;
            if (piece.IsShown()) shown = piece.ownShift;
            if (node->Is(EKind::File)) shown = kLost;
            piece.evidentShift = piece.isAstray ? piece.ownShift : shown;
            if (nextRecording != kLost && piece.ownShift != kLost) piece.nextRecording = nextRecording + piece.ownShift;
            if (node->Is(EKind::Recording)) nextRecording = node->Candidate().begin;
        }
        std::ranges::reverse(pieces);
        return pieces;
    }

    const CCandidates& m_candidates;
    CCosts m_costs;
    std::int64_t m_size;
    const CReach& m_reach;
    std::vector<CNodePtr> m_open;                     ///< The best ways that have ended, the best first.
    std::multimap<std::int64_t, CNodePtr> m_pending;  ///< Those that end later, by their end.
    std::vector<CNode> m_offers;
    std::int32_t m_whole = 0;
};

}  // namespace

std::vector<CPiece> Explain(const CCandidates& candidates, std::int64_t size, const CReach& reach) {
    return CExplainer(candidates, size, reach).Run();
}

}  // namespace vxfileio::recovery
