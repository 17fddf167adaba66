#include "recovery/Explanation.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// The recording of segments whose recording header is lost.
constexpr CCandidate kLostRecording;

/// What positions must still show about a recording header.
enum class EUnproven : std::uint8_t {
    None,
    Cut,     ///< It lacks its end, so an unknown number of bytes is missing.
    Joined,  ///< Cells moved: its end may be that of another header.
};

/// One way to explain the input up to the end of a piece.
struct CNode {
    CPiece piece;          ///< Without a candidate: the beginning of the input.
    std::int64_t gap = 0;  ///< Number of bytes before the piece that belong to nothing.
    std::int64_t cost = 0;
    std::int64_t other = std::numeric_limits<std::int64_t>::max();  ///< Cost of the best way with another piece before.
    std::int32_t wholeBefore = 0;                                   ///< Number of whole candidates up to this one.
    std::shared_ptr<CNode> parent;
    std::int64_t shiftBefore = kLost;       ///< The shift before the last known change of it, or before the recording.
    bool goesOn = false;                    ///< It continues after a file within samples.
    EUnproven unproven = EUnproven::None;   ///< Its recording header, until a position confirms it.
    const CNode* file = nullptr;            ///< The header of the file that it is in; null for the first one.
    const CCandidate* recording = nullptr;  ///< The header of the current recording; null before the first of a file.

    /// Releases the pieces before it one by one: there may be too many for one call within another.
    ~CNode() {
        while (parent != nullptr && parent.use_count() == 1)
            parent = std::move(parent->parent);
    }

    const CCandidate& Candidate() const { return *piece.candidate; }
    bool Is(EKind kind) const { return piece.candidate != nullptr && Candidate().kind == kind; }
    bool IsLastSegment() const { return Is(EKind::Segment) && Candidate().next == kUnset; }
    bool ExpectsSegment() const { return Is(EKind::Segment) && IsPosition(Candidate().next); }
};

using CNodePtr = std::shared_ptr<CNode>;

int GapCost(std::int64_t bytes) {
    return bytes <= 0 ? 0 : costs::kGap + 2 * static_cast<int>(std::bit_width(static_cast<std::uint64_t>(bytes)));
}

bool IsRecordingHdrSize(std::int64_t bytes) {
    return std::ranges::find(FormsOf(EKind::Recording), bytes, &CForm::size) != FormsOf(EKind::Recording).end();
}

class CExplainer {
 public:
    CExplainer(const CCandidates& candidates, std::int64_t size, const CReach& reach)
        : m_candidates(candidates), m_size(size), m_reach(reach), m_open{std::make_shared<CNode>()} {}

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
            return WellsOf(node).Lists(candidate.well) &&
                   (inner.IsLastSegment() || !WellsOf(inner).Lists(candidate.well));
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
        node.shiftBefore =
            candidate.moved != 0 || candidate.kind == EKind::Recording ? parent->piece.shift : parent->shiftBefore;
        node.gap = end <= candidate.begin ? candidate.begin - end : candidate.claim - end;
        node.cost = parent->cost + (parent->goesOn ? costs::kFileWithin : GapCost(node.gap)) +
                    costs::kHeader * candidate.whole / (candidate.whole + candidate.damaged) +
                    (end == candidate.begin ? 0 : UnconfirmedCost(*parent, node.gap)) + PartsCost(candidate, end);
        candidate.kind == EKind::Segment ? FollowWithSegment(node) : FollowWithHeader(node);
    }

    /// Returns what the parts of a candidate cost that moved or are missing, if it follows a piece that ends at `end`.
    static int PartsCost(const CCandidate& candidate, std::int64_t end) {
        if (candidate.IsCutShort()) return costs::kCutHeader;
        if (candidate.moved != 0) return costs::kValue;
        return candidate.kind == EKind::Recording && candidate.begin < end ? costs::kNoBeginning : 0;
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
        if (HasRecordingHdr(node) && node.recording->form != header.form) node.cost += costs::kVersion;
        OfferShifts(node);
    }

    void FollowWithSegment(CNode node) {
        const int same = SameRecordingCost(node);
        if (node.recording != nullptr) OfferReadings(node, same);
        if (node.recording != nullptr && same == 0 && !MayPassNextRecording(node)) return;
        if (node.parent->goesOn && node.Candidate().OwnShift() != node.parent->piece.shift) return;
        const int lost = LostRecordingCost(node);
        node.piece.lostRecording = true;
        node.unproven = EUnproven::None;
        node.recording = &kLostRecording;
        OfferReadings(node, lost);
    }

    static bool HasRecordingHdr(const CNode& node) {
        return node.recording != nullptr && node.recording->form != nullptr;
    }

    /// Returns the wells of a node's recording; none if they are lost.
    const CWellList& WellsOf(const CNode& node) const {
        static const CWellList kNone;
        return HasRecordingHdr(node) ? m_candidates.WellsOf(*node.recording) : kNone;
    }

    /// Returns the interval of a segment's well from the recording header; 0 if unknown.
    std::int64_t TickOf(const CNode& node, const CCandidate& segment) const {
        return segment.noID ? WellsOf(node).CommonTick() : WellsOf(node).TickOf(segment.well);
    }

    /// Offers each way to read a segment, with at most one computed value.
    void OfferReadings(CNode node, int cost) {
        const CCandidate& segment = node.Candidate();
        if (!IsReadable(node)) return;
        node.cost += cost;
        const std::int64_t tick = TickOf(node, segment);
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
        const bool knowsWells = !WellsOf(node).wells.empty();
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
        const bool isByGap = ShiftsByGap(node);
        node.cost += isByGap ? costs::kShiftByGap : costs::kShift;
        if (isByGap) node.shiftBefore = shift;
        OfferWith(node, node.piece.ownShift);
    }

    /// Returns whether a recording header whose cells moved seems to be parts of two: the next position shows that
    /// bytes are missing, or that more are extra than the gap before it has.
    static bool HasMixedHeader(const CNode& node) {
        const CCandidate& candidate = node.Candidate();
        const bool isOfEnd = candidate.IsJoined() && candidate.movedRow <= candidate.form->RowOf("FPosRecordingData");
        if (node.piece.ownShift == kLost || !(node.unproven == EUnproven::Joined || isOfEnd)) return false;
        const std::int64_t by = node.piece.ownShift - node.parent->piece.shift;
        return by > 0 || -by > node.gap;
    }

    /// Returns whether the position of a node shifts by the number of bytes that the gap before it shows to be missing
    /// or too many, or back to the shift before. After a recording header without its end, any number may be missing,
    /// with another header among them.
    bool ShiftsByGap(const CNode& node) const {
        const std::int64_t by = node.piece.ownShift - node.parent->piece.shift;
        if (by > 0 && node.parent->unproven == EUnproven::Cut) return true;
        return node.gap > 0 && (by == -node.gap || node.piece.ownShift == node.shiftBefore ||
                                by == OverlapOf(node.parent->piece.end, node.Candidate().begin));
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

    /// Returns how many bytes the whole segment at `begin` lacks if the next header begins at `next`; 0 if there is no
    /// such segment.
    std::int64_t OverlapOf(std::int64_t begin, std::int64_t next) const {
        const CCandidate* const segment = m_candidates.WholeAt(EKind::Segment, begin);
        return segment == nullptr ? 0 : std::max<std::int64_t>(0, segment->DataEnd() - next);
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

    /// Returns the cost if no header follows right after a node.
    static int UnconfirmedCost(const CNode& node, std::int64_t gap) {
        if (!node.Is(EKind::Segment)) return 0;
        const CCandidate& segment = node.Candidate();
        if (segment.IsWhole() && node.piece.made == EMade::None) return 0;
        // Bytes that were put into a damaged header move its samples.
        if (gap < segment.end - segment.begin && !segment.IsWhole() && segment.moved == 0) return costs::kUnconfirmed;
        if (node.piece.IsShown()) return 0;
        return segment.next == kUnset && IsRecordingHdrSize(gap) ? 0 : costs::kUnconfirmed;
    }

    int SameRecordingCost(const CNode& node) const {
        int cost = node.parent->IsLastSegment() ? costs::kPosition : 0;
        if ((node.gap > 0 || MissingBefore(node) != 0) && node.recording != nullptr && IsForeign(node))
            cost += costs::kForeign;
        return cost;
    }

    /// Returns whether the current recording header seems to be of another file: a segment doesn't fit it, and has the
    /// shift that positions had before that header.
    bool IsHeaderForeign(const CNode& node) const {
        const auto shift = HasRecordingHdr(node) ? node.recording->OwnShift() : std::nullopt;
        return shift && shift != node.shiftBefore && node.Candidate().OwnShift() == node.shiftBefore && IsForeign(node);
    }

    /// Returns how many bytes are missing before a segment by its own position; negative if there are too many.
    static std::int64_t MissingBefore(const CNode& node) {
        const std::int64_t shift = node.parent->piece.shift;
        return node.Candidate().OwnShift().value_or(shift) - shift;
    }

    int LostRecordingCost(const CNode& node) const {
        const bool hasRoom = node.gap + MissingBefore(node) >= LeastSizeOf(EKind::Recording);
        const bool hasEnded = node.parent->IsLastSegment() && (node.gap > 0 || MissingBefore(node) != 0);
        const bool isFirst = node.parent->Is(EKind::File) && node.gap > 0;
        return (hasRoom || hasEnded || isFirst || IsHeaderForeign(node) ? costs::kLostRecording
                                                                        : costs::kForcedRecording) +
               (node.parent->ExpectsSegment() && IsRecordingHdrSize(node.gap) ? costs::kPosition : 0);
    }

    /// Returns whether the next recording should begin before a segment, if positions have a shift there.
    static bool IsNextRecordingPassed(const CNode& node, std::int64_t shift) {
        if (!node.Is(EKind::Segment) || !HasRecordingHdr(node)) return false;
        const std::int64_t next = node.recording->from;
        return IsPosition(next) && next >= node.parent->piece.end + node.parent->piece.shift &&
               next < node.Candidate().begin + shift;
    }

    /// Returns whether that is so by the shift before a segment, or by its own.
    static bool MayPassNextRecording(const CNode& node) {
        const std::int64_t shift = node.parent->piece.shift;
        return IsNextRecordingPassed(node, shift) ||
               IsNextRecordingPassed(node, node.Candidate().OwnShift().value_or(shift));
    }

    /// Returns whether neither a segment nor the one after it fits the current recording. A single misfit may be
    /// damaged.
    bool IsForeign(const CNode& node) const {
        const CCandidate* const segment = node.piece.candidate;
        if (Belongs(*node.parent, *segment)) return false;
        const CCandidate* const next = segment + 1;
        return next == m_candidates.list.data() + m_candidates.list.size() || next->kind != EKind::Segment ||
               !next->IsWhole() || !Belongs(*node.parent, *next);
    }

    bool Belongs(const CNode& parent, const CCandidate& segment) const {
        const CWellList& wells = WellsOf(parent);
        if (!wells.wells.empty() && !wells.Lists(segment.well)) return false;
        const std::int64_t tick = TickOf(parent, segment);
        if (tick > 0 && !TicksOf(segment.from, segment.to, segment.size).Has(tick)) return false;
        constexpr int kMostSteps = 256;
        const CNode* node = &parent;
        for (int i = 0; i < kMostSteps && node->Is(EKind::Segment); ++i) {
            if (node->Candidate().well == segment.well) return segment.from > node->Candidate().to;
            node = node->parent.get();
        }
        return true;
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
            if (piece.IsShown()) shown = piece.ownShift;
            if (node->Is(EKind::File)) shown = kLost;
            piece.shownShift = shown;
            if (nextRecording != kLost && piece.ownShift != kLost) piece.nextRecording = nextRecording + piece.ownShift;
            if (node->Is(EKind::Recording)) nextRecording = node->Candidate().begin;
        }
        std::ranges::reverse(pieces);
        return pieces;
    }

    const CCandidates& m_candidates;
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
