#include "recovery/Explanation.h"

#include <algorithm>
#include <array>
#include <bit>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

constexpr std::int32_t kNone = -1;

/// One way to explain the input up to the end of a piece.
struct CNode {
    CPiece piece;
    std::int32_t cost = 0;
    std::int32_t other = std::numeric_limits<std::int32_t>::max();  ///< Cost of the best way with another piece before.
    std::int32_t parent = kNone;
    std::int32_t recording = kNone;  ///< The node that began the recording.
    std::int32_t wholeBefore = 0;    ///< Number of whole candidates up to this one.
    bool cutsParent = false;         ///< It begins within the header of its parent.
};

/// One way to read a segment header.
struct CReading {
    std::int64_t samples = 0;
    EMade made = EMade::None;
};

int GapCost(std::int64_t bytes) {
    return bytes <= 0 ? 0 : costs::kGap + 2 * static_cast<int>(std::bit_width(static_cast<std::uint64_t>(bytes)));
}

bool IsRecordingHdrSize(std::int64_t bytes) {
    return std::ranges::any_of(
        Layouts(), [&](const CLayout& layout) { return bytes == static_cast<std::int64_t>(layout.recording.size); });
}

/// Returns the number of samples between two times, or nothing if no segment can have that many.
std::optional<std::int64_t> SamplesBetween(std::int64_t from, std::int64_t to, std::int64_t tick) {
    const auto count = SampleCount(from, to, tick);
    if (!count || *count > std::uint64_t{kMostSamples}) return std::nullopt;
    return static_cast<std::int64_t>(*count);
}

/// Returns the shift by a candidate's own position, if it has one.
std::optional<std::int64_t> OwnShift(const CCandidate& candidate) {
    if (!candidate.IsWhole() || !IsPosition(candidate.next)) return std::nullopt;
    if (candidate.kind == EKind::File) return -candidate.begin;
    return candidate.next - candidate.end + candidate.moved -
           (candidate.kind == EKind::Segment ? 2 * candidate.size : 0);
}

class CExplainer {
 public:
    CExplainer(const CCandidates& candidates, std::int64_t size, const CReach& reach)
        : m_candidates(candidates), m_size(size), m_reach(reach) {
        m_nodes.emplace_back();
        m_open.push_back(0);
    }

    std::vector<CPiece> Run() {
        for (std::uint32_t i = 0; i < m_candidates.list.size(); ++i) {
            const CCandidate& candidate = m_candidates.list[i];
            if (i % 1024 == 0) m_reach(candidate.begin);
            Release(candidate.claim);
            Extend(i);
            m_whole += candidate.IsWhole() ? 1 : 0;
            if (m_pending.size() > kMostPending) DropTheCostliest();
            if (m_nodes.size() > 2 * m_needed + kMostPending) ForgetDeadEnds();
        }
        Release(m_size);
        return Path(Best());
    }

 private:
    static constexpr std::size_t kMostOpen = 16;
    static constexpr std::size_t kMostPending = std::size_t{1} << 14;

    using CEnd = std::pair<std::int64_t, std::int32_t>;

    CNode& NodeAt(std::int32_t index) { return m_nodes[static_cast<std::size_t>(index)]; }
    const CNode& NodeAt(std::int32_t index) const { return m_nodes[static_cast<std::size_t>(index)]; }

    const CCandidate& CandidateOf(const CNode& node) const { return m_candidates.list[node.piece.candidate]; }
    bool IsStart(const CNode& node) const { return node.parent == kNone; }
    bool IsOf(const CNode& node, EKind kind) const { return !IsStart(node) && CandidateOf(node).kind == kind; }

    /// Opens the nodes that end at or before a position: something can follow them now.
    void Release(std::int64_t position) {
        while (!m_pending.empty() && m_pending.front().first <= position) {
            std::ranges::pop_heap(m_pending, std::greater());
            const std::int32_t index = m_pending.back().second;
            m_pending.pop_back();
            CNode& node = NodeAt(index);
            if (m_whole > node.wholeBefore) node.cost += costs::kHeaderWithin;
            const auto place =
                std::ranges::upper_bound(m_open, node.cost, {}, [&](std::int32_t other) { return NodeAt(other).cost; });
            m_open.insert(place, index);
            if (m_open.size() > kMostOpen) m_open.pop_back();
        }
    }

    /// Drops the costlier half of the pending ways.
    void DropTheCostliest() {
        const auto half = m_pending.begin() + kMostPending / 2;
        std::nth_element(m_pending.begin(), half, m_pending.end(), [&](const CEnd& one, const CEnd& other) {
            return NodeAt(one.second).cost < NodeAt(other.second).cost;
        });
        m_pending.erase(half, m_pending.end());
        std::ranges::make_heap(m_pending, std::greater());
    }

    /// Removes the nodes that no open way needs. The others keep their order.
    void ForgetDeadEnds() {
        std::vector<std::int32_t> places(m_nodes.size(), kNone);
        const auto need = [&](std::int32_t index) {
            for (; index != kNone && places[static_cast<std::size_t>(index)] == kNone; index = NodeAt(index).parent)
                places[static_cast<std::size_t>(index)] = 0;
        };
        const auto placeOf = [&](std::int32_t index) {
            return index == kNone ? kNone : places[static_cast<std::size_t>(index)];
        };
        need(0);
        std::ranges::for_each(m_open, need);
        std::ranges::for_each(m_recordings, need);
        for (const CEnd& end : m_pending)
            need(end.second);
        m_needed = 0;
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            if (places[i] == kNone) continue;
            CNode& node = m_nodes[m_needed] = m_nodes[i];
            node.parent = placeOf(node.parent);
            places[i] = static_cast<std::int32_t>(m_needed++);
            node.recording = placeOf(node.recording);
        }
        m_nodes.resize(m_needed);
        for (std::int32_t& index : m_open)
            index = placeOf(index);
        for (std::int32_t& index : m_recordings)
            index = placeOf(index);
        for (CEnd& end : m_pending)
            end.second = placeOf(end.second);
        std::map<std::pair<std::int32_t, std::int32_t>, CTickRange> learned;
        for (const auto& [key, range] : m_learned) {
            if (placeOf(key.first) != kNone) learned[{placeOf(key.first), key.second}] = range;
        }
        m_learned.swap(learned);
    }

    /// Offers all ways to a candidate. Once one needs no assumption, clearly costlier ways are skipped.
    void Extend(std::uint32_t index) {
        const CCandidate& candidate = m_candidates.list[index];
        m_offers.clear();
        std::int32_t most = std::numeric_limits<std::int32_t>::max();
        for (const std::int32_t parent : m_open) {
            const std::int32_t cost = NodeAt(parent).cost;
            if (cost > most) break;
            Follow(parent, index, false);
            const bool isFree = !m_offers.empty() && m_offers.front().piece.hasOwnShift &&
                                m_offers.front().cost == cost + costs::kHeader;
            if (isFree) most = std::min(most, cost + costs::kNearlyEqual);
        }
        for (const std::int32_t parent : m_recordings) {
            const CNode& node = NodeAt(parent);
            if (IsStart(node)) continue;
            const CCandidate& header = CandidateOf(node);
            if (!header.IsWhole() && header.begin < candidate.begin && candidate.begin < header.end)
                Follow(parent, index, true);
        }
        for (const CNode& offer : m_offers)
            Add(offer);
    }

    void Add(CNode node) {
        const auto index = static_cast<std::int32_t>(m_nodes.size());
        const bool isRecording = IsOf(node, EKind::Recording);
        if (isRecording || node.piece.lostRecording) node.recording = index;
        if (isRecording) m_recordings[m_nextRecording++ % m_recordings.size()] = index;
        node.wholeBefore = m_whole + (CandidateOf(node).IsWhole() ? 1 : 0);
        m_pending.emplace_back(node.piece.end, index);
        std::ranges::push_heap(m_pending, std::greater());
        m_nodes.push_back(node);
        Learn(node);
    }

    /// Offers the ways in which a candidate can follow a node.
    void Follow(std::int32_t parentIndex, std::uint32_t index, bool cutsParent) {
        const CNode& parent = NodeAt(parentIndex);
        const CCandidate& candidate = m_candidates.list[index];
        const std::int64_t end = cutsParent ? candidate.begin : parent.piece.end;
        if (end > candidate.claim) return;
        CNode node{.piece = {.candidate = index}, .parent = parentIndex, .recording = parent.recording};
        node.cutsParent = cutsParent;
        const std::int64_t gap = end <= candidate.begin ? candidate.begin - end : candidate.claim - end;
        const int cells = candidate.whole + candidate.damaged;
        const bool isDirect = end == candidate.begin;
        node.cost = parent.cost + GapCost(gap) + costs::kHeader * candidate.whole / cells +
                    (cutsParent ? CutCost(parent, candidate.begin) : 0) +
                    (isDirect ? 0 : UnconfirmedCost(parent, gap)) + (candidate.moved != 0 ? costs::kValue : 0);
        if (candidate.kind == EKind::Segment) {
            FollowWithSegment(parent, gap, node);
        } else {
            FollowWithHeader(parent, gap, node);
        }
    }

    /// Returns the cost of ending a recording header early: an assumption, and the lost cells.
    int CutCost(const CNode& node, std::int64_t end) const {
        const CCandidate& header = CandidateOf(node);
        const int value = costs::kHeader * header.whole / (header.whole + header.damaged);
        const auto lost = static_cast<double>(header.end - end) / static_cast<double>(header.end - header.begin);
        return costs::kGap - static_cast<int>(value * lost);
    }

    void FollowWithHeader(const CNode& parent, std::int64_t gap, CNode node) {
        const CCandidate& header = CandidateOf(node);
        if (header.end > m_size) return;
        node.piece.end = header.end;
        if (header.kind == EKind::File) {
            node.recording = kNone;
            node.piece.shift = -header.begin;
            node.piece.hasOwnShift = true;
            return Offer(node);
        }
        if (IsOf(parent, EKind::Segment) && IsPosition(CandidateOf(parent).next)) node.cost += costs::kPosition;
        if (parent.recording != kNone) {
            const CNode& before = NodeAt(parent.recording);
            if (IsOf(before, EKind::Recording) && CandidateOf(before).layout != header.layout)
                node.cost += costs::kVersion;
        }
        OfferShifts(parent, gap, node, header.next);
    }

    void FollowWithSegment(const CNode& parent, std::int64_t gap, CNode node) {
        const int same = SameRecordingCost(parent, gap, node);
        if (parent.recording != kNone) OfferReadings(parent, gap, node, same);
        if (parent.recording != kNone && same == 0) return;
        node.piece.lostRecording = true;
        OfferReadings(parent, gap, node, LostRecordingCost(parent, gap, node));
    }

    /// Offers each way to read a segment.
    void OfferReadings(const CNode& parent, std::int64_t gap, const CNode& node, int cost) {
        const CCandidate& segment = CandidateOf(node);
        const std::int64_t tick = node.piece.lostRecording ? 0 : TickOf(parent.recording, segment);
        const CWellList* const wells = node.piece.lostRecording ? nullptr : WellListOf(parent.recording);
        for (const CReading& reading :
             ReadingsOf(segment, tick, parent.piece.shift, wells != nullptr && wells->knowsWells)) {
            CNode way = node;
            way.piece.samples = reading.samples;
            way.piece.made = reading.made;
            way.piece.tick = tick;
            way.piece.end = segment.end + 2 * reading.samples;
            way.cost += cost + (reading.made == EMade::None ? 0 : costs::kValue);
            if (way.piece.end > m_size) {
                const bool isTold = tick > 0 || segment.next == way.piece.end + parent.piece.shift;
                if (!segment.IsWhole() || reading.made != EMade::None || !isTold) continue;
                way.piece.isCut = true;
                way.cost += costs::kCut;
            }
            OfferShifts(parent, gap, way, segment.next);
        }
    }

    /// Offers a node as it is if its position has the current shift. Otherwise either this position is wrong, or all
    /// positions are from here on.
    void OfferShifts(const CNode& parent, std::int64_t gap, CNode node, std::int64_t position) {
        const std::int64_t moved = CandidateOf(node).moved;
        const std::int64_t end = node.piece.end;
        if (node.piece.isCut) node.piece.end = m_size;
        node.piece.shift = parent.piece.shift - moved;
        if (position == kLost || position == kUnset) return Offer(node);
        node.piece.hasOwnShift = IsPosition(position);
        node.piece.ownShift = node.piece.hasOwnShift ? position - (end - moved) : 0;
        if (node.piece.hasOwnShift && node.piece.ownShift == parent.piece.shift) return Offer(node);
        CNode wrong = node;
        wrong.cost += costs::kPosition;
        Offer(wrong);
        if (!node.piece.hasOwnShift) return;
        const std::int64_t by = node.piece.ownShift - parent.piece.shift;
        const bool isByGap = gap > 0 && (by == -gap || by == OverlapOf(parent.piece.end, CandidateOf(node).begin));
        node.cost += isByGap ? costs::kShiftByGap : costs::kShift;
        node.piece.shift = node.piece.ownShift - moved;
        Offer(node);
    }

    /// Returns how many bytes the whole segment at `begin` lacks if the next header begins at `next`; 0 if there is no
    /// such segment.
    std::int64_t OverlapOf(std::int64_t begin, std::int64_t next) const {
        const auto found = std::ranges::lower_bound(m_candidates.list, begin, {}, &CCandidate::claim);
        for (auto segment = found; segment != m_candidates.list.end() && segment->claim == begin; ++segment) {
            if (segment->kind == EKind::Segment && segment->IsWhole())
                return std::max<std::int64_t>(0, segment->end + 2 * segment->size - next);
        }
        return 0;
    }

    /// Keeps the cheaper of two ways to the same state.
    void Offer(const CNode& node) {
        const auto isSame = [&](const CNode& other) {
            return other.piece.end == node.piece.end && other.piece.made == node.piece.made &&
                   other.piece.shift == node.piece.shift && other.piece.samples == node.piece.samples;
        };
        const auto same = std::ranges::find_if(m_offers, isSame);
        if (same == m_offers.end()) return m_offers.push_back(node);
        if (node.cost < same->cost) {
            const std::int32_t other = same->cost;
            *same = node;
            same->other = other;
        } else if (node.cost < same->other) {
            same->other = node.cost;
        }
    }

    /// Returns the ways to read a segment, with at most one computed value.
    std::vector<CReading> ReadingsOf(const CCandidate& segment, std::int64_t tick, std::int64_t shift,
                                     bool knowsWells) const {
        const auto isLost = {segment.noID, segment.noFrom, segment.noTo, segment.noSize, segment.next == kLost};
        const auto lost = std::ranges::count(isLost, true);
        // Where bytes were removed from a header, the cell there may be a mixture of two.
        if (lost > (segment.moved == 0 ? 1 : 0) || (segment.noID && segment.damaged > 1 && !knowsWells)) return {};
        const auto samples = SamplesBetween(segment.from, segment.to, tick);
        if (segment.noSize) {
            if (samples) return {{*samples, EMade::Size}};
            const std::int64_t room = IsPosition(segment.next) ? (segment.next - shift - segment.end) / 2 : 0;
            const bool fits =
                tick == 0 && room > 0 && room <= kMostSamples && !TicksOf(segment.from, segment.to, room).IsEmpty();
            return fits ? std::vector<CReading>{{room, EMade::Size}} : std::vector<CReading>{};
        }
        if (segment.noFrom)
            return TimeAfter(segment.to, 1 - segment.size, tick) ? std::vector<CReading>{{segment.size, EMade::From}}
                                                                 : std::vector<CReading>{};
        if (segment.noTo)
            return TimeAfter(segment.from, segment.size - 1, tick) ? std::vector<CReading>{{segment.size, EMade::To}}
                                                                   : std::vector<CReading>{};
        const CTickRange intervals = TicksOf(segment.from, segment.to, segment.size);
        if (tick > 0 ? intervals.Has(tick) : !intervals.IsEmpty()) return {{segment.size, EMade::None}};
        std::vector<CReading> readings = {{segment.size, EMade::Either}};
        if (samples) readings.push_back({*samples, EMade::Size});
        return readings;
    }

    /// Returns the cost if no header follows right after a node.
    int UnconfirmedCost(const CNode& node, std::int64_t gap) const {
        if (!IsOf(node, EKind::Segment)) return 0;
        const CCandidate& segment = CandidateOf(node);
        if (segment.IsWhole() && node.piece.made == EMade::None) return 0;
        // Bytes inserted into a damaged header move its samples.
        if (gap < segment.end - segment.begin && !segment.IsWhole() && segment.moved == 0) return costs::kUnconfirmed;
        if (IsPosition(segment.next) && node.piece.ownShift == node.piece.shift) return 0;
        return segment.next == kUnset && IsRecordingHdrSize(gap) ? 0 : costs::kUnconfirmed;
    }

    int SameRecordingCost(const CNode& parent, std::int64_t gap, const CNode& node) const {
        int cost = IsOf(parent, EKind::Segment) && CandidateOf(parent).next == kUnset ? costs::kPosition : 0;
        if ((gap > 0 || MissingAhead(parent, CandidateOf(node)) != 0) && parent.recording != kNone &&
            IsForeign(parent, node))
            cost += costs::kForeign;
        if (gap > 0 && IsNextRecordingPassed(parent, node)) cost += costs::kPosition;
        return cost;
    }

    /// Returns how many bytes are missing before a segment by its own position; negative if there are too many.
    static std::int64_t MissingAhead(const CNode& parent, const CCandidate& segment) {
        return OwnShift(segment).value_or(parent.piece.shift) - parent.piece.shift;
    }

    int LostRecordingCost(const CNode& parent, std::int64_t gap, const CNode& node) const {
        const bool expectsSegment = IsOf(parent, EKind::Segment) && IsPosition(CandidateOf(parent).next);
        const bool hasRoom = gap + MissingAhead(parent, CandidateOf(node)) >=
                             static_cast<std::int64_t>(Layouts().front().recording.size);
        const bool hasEnded = IsOf(parent, EKind::Segment) && CandidateOf(parent).next == kUnset;
        return (hasRoom || (hasEnded && gap > 0) || IsNextRecordingPassed(parent, node) ? costs::kLostRecording
                                                                                        : costs::kForcedRecording) +
               (expectsSegment && IsRecordingHdrSize(gap) ? costs::kPosition : 0);
    }

    /// Returns whether the gap between two nodes should hold the next recording header.
    bool IsNextRecordingPassed(const CNode& parent, const CNode& node) const {
        std::int64_t next = kLost;
        if (parent.recording != kNone) {
            const CNode& recording = NodeAt(parent.recording);
            if (IsOf(recording, EKind::Recording)) next = CandidateOf(recording).from;
        } else if (IsOf(parent, EKind::File)) {
            next = CandidateOf(parent).next;
        }
        if (!IsPosition(next)) return false;
        next -= parent.piece.shift;
        return next >= parent.piece.end && next < CandidateOf(node).begin;
    }

    /// Returns whether neither a segment nor the one after it fits the current recording. A single misfit may be
    /// damaged.
    bool IsForeign(const CNode& parent, const CNode& node) const {
        const CCandidate& segment = CandidateOf(node);
        if (Belongs(parent, segment)) return false;
        if (node.piece.candidate + 1 >= m_candidates.list.size()) return true;
        const CCandidate& next = m_candidates.list[node.piece.candidate + 1];
        return next.kind != EKind::Segment || !next.IsWhole() || !Belongs(parent, next);
    }

    bool Belongs(const CNode& parent, const CCandidate& segment) const {
        const CWellList* const channels = WellListOf(parent.recording);
        if (channels != nullptr && channels->knowsWells && !channels->Lists(segment.well)) return false;
        const std::int64_t tick = TickOf(parent.recording, segment);
        if (tick > 0 && !TicksOf(segment.from, segment.to, segment.size).Has(tick)) return false;
        constexpr int kMostSteps = 256;
        const CNode* node = &parent;
        for (int i = 0; i < kMostSteps && node->parent != kNone && IsOf(*node, EKind::Segment); ++i) {
            const CCandidate& before = CandidateOf(*node);
            if (before.well == segment.well) return segment.from > before.to;
            node = &NodeAt(node->parent);
        }
        return true;
    }

    const CWellList* WellListOf(std::int32_t recording) const {
        if (recording == kNone) return nullptr;
        const CNode& node = NodeAt(recording);
        if (!IsOf(node, EKind::Recording)) return nullptr;
        return &m_candidates.wellLists[static_cast<std::size_t>(CandidateOf(node).well)];
    }

    /// Returns the interval of a segment's well from the recording header or earlier segments; 0 if unknown.
    std::int64_t TickOf(std::int32_t recording, const CCandidate& segment) const {
        if (const CWellList* const channels = WellListOf(recording)) {
            const std::int64_t tick = segment.noID ? channels->CommonTick() : channels->TickOf(segment.well);
            if (tick > 0) return tick;
        }
        const auto learned = m_learned.find({recording, segment.well});
        if (learned == m_learned.end() || learned->second.IsEmpty() || learned->second.IsOpen()) return 0;
        return learned->second.atMost;
    }

    /// Narrows the interval of a well that the recording header doesn't have.
    void Learn(const CNode& node) {
        const CCandidate& segment = CandidateOf(node);
        if (segment.kind != EKind::Segment || !segment.IsWhole() || node.piece.made != EMade::None) return;
        const CWellList* const channels = WellListOf(node.recording);
        if (channels != nullptr && channels->TickOf(segment.well) > 0) return;
        CTickRange& learned = m_learned[{node.recording, segment.well}];
        const CTickRange own = TicksOf(segment.from, segment.to, segment.size);
        learned.atLeast = std::max(learned.atLeast, own.atLeast);
        learned.atMost = std::min(learned.atMost, own.atMost);
    }

    std::int32_t Best() const {
        std::int32_t best = 0;
        std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
        for (const std::int32_t index : m_open) {
            const CNode& node = NodeAt(index);
            const std::int64_t gap = m_size - node.piece.end;
            const std::int32_t cost = node.cost + GapCost(gap) + (gap > 0 ? UnconfirmedCost(node, gap) : 0);
            if (cost >= lowest) continue;
            lowest = cost;
            best = index;
        }
        return best;
    }

    std::vector<CPiece> Path(std::int32_t last) const {
        std::vector<CPiece> pieces;
        std::optional<std::int64_t> cutAt;
        for (const CNode* node = &NodeAt(last); !IsStart(*node); node = &NodeAt(node->parent)) {
            pieces.push_back(node->piece);
            if (cutAt) pieces.back().end = *cutAt;
            pieces.back().isAmbiguous = node->other < std::numeric_limits<std::int32_t>::max() &&
                                        node->other - node->cost <= costs::kNearlyEqual;
            cutAt = node->cutsParent ? std::optional(CandidateOf(*node).begin) : std::nullopt;
        }
        std::ranges::reverse(pieces);
        return pieces;
    }

    const CCandidates& m_candidates;
    std::int64_t m_size;
    const CReach& m_reach;
    std::vector<CNode> m_nodes;
    std::vector<std::int32_t> m_open;  ///< The best ways that have ended, the best first.
    std::vector<CEnd> m_pending;       ///< Those that end later: a heap with the first to end at its front.
    std::vector<CNode> m_offers;
    std::array<std::int32_t, 4> m_recordings = {};  ///< The latest nodes of recordings; 0 for none.
    std::size_t m_nextRecording = 0;
    std::int32_t m_whole = 0;
    std::size_t m_needed = 0;  ///< Nodes left when dead ends were last removed.
    std::map<std::pair<std::int32_t, std::int32_t>, CTickRange> m_learned;
};

}  // namespace

std::vector<CPiece> Explain(CCandidates& candidates, std::int64_t size, const CReach& reach) {
    LeaveOutFilesWithin(candidates, size);
    return CExplainer(candidates, size, reach).Run();
}

namespace {

/// Finds raw data files that were stored as samples. The *place* of a header is its offset in its own file: its offset
/// here plus its shift. Places of headers in an inner file count from the beginning of that file; after it, those of
/// the outer file continue.
class CFilesWithin {
 public:
    CFilesWithin(CCandidates& candidates, std::int64_t size)
        : m_lists(candidates.wellLists), m_list(candidates.list), m_size(size) {}

    void LeaveOut() {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_list.size(); ++i) {
            if (m_list[i].kind == EKind::File && m_list[i].begin > 0 && m_list[i].IsWhole() && m_shift) i = EndOf(i);
            if (i == m_list.size()) break;
            Pass(m_list[i]);
            m_list[kept++] = m_list[i];
        }
        m_list.resize(kept);
    }

 private:
    void Pass(const CCandidate& candidate) {
        if (candidate.kind == EKind::Recording) m_around = WellsOf(candidate);
        if (candidate.kind == EKind::Recording && IsPosition(candidate.from)) m_nextRecording = candidate.from;
        if (candidate.kind == EKind::Segment && IsPosition(candidate.next)) m_nextSegment = candidate.next;
        if (candidate.kind == EKind::File) m_nextRecording = m_nextSegment = kLost;
        if (const auto shift = OwnShift(candidate)) m_shift = shift;
    }

    const CWellList* WellsOf(const CCandidate& recording) const {
        return &m_lists[static_cast<std::size_t>(recording.well)];
    }

    /// Returns the index of the first candidate after the file that begins at `file`, or `file` if it isn't within
    /// samples.
    std::size_t EndOf(std::size_t file) const {
        if (const auto end = EndOfSamples(file)) return *end;
        if (const auto end = FirstAround(file)) return *end;
        const std::size_t end = AfterLastSegment(file);
        return end == file && BeginsSamples(file) ? m_list.size() : end;
    }

    /// Returns whether the file is at the beginning of a whole segment's samples and all that follows is within them.
    bool BeginsSamples(std::size_t file) const {
        const CCandidate& segment = m_list[file - 1];
        const std::int64_t end = segment.end + 2 * segment.size;
        return segment.kind == EKind::Segment && segment.IsWhole() && segment.end == m_list[file].begin &&
               m_list.back().end <= end;
    }

    /// Returns the candidate after the samples that hold the file, if their own header was found, even damaged, and
    /// they end at another header or at the end of the input.
    std::optional<std::size_t> EndOfSamples(std::size_t file) const {
        for (std::size_t i = file; i > 0 && m_list[i - 1].end > m_list[file - 1].begin; --i) {
            const CCandidate& segment = m_list[i - 1];
            const std::int64_t end = segment.end + 2 * segment.size;
            if (segment.kind != EKind::Segment || segment.noSize || end <= m_list[file].begin) continue;
            const auto next = std::ranges::lower_bound(m_list, end, {}, &CCandidate::claim);
            if (end == m_size || (next != m_list.end() && next->begin == end))
                return static_cast<std::size_t>(next - m_list.begin());
        }
        return std::nullopt;
    }

    /// Returns the first header after the file that belongs to the outer file again: it has the same shift as those
    /// before the file, or the shift of the header at the place that these point at.
    std::optional<std::size_t> FirstAround(std::size_t file) const {
        std::optional<std::int64_t> shift;
        for (std::size_t i = file + 1; i < m_list.size() && !shift; ++i) {
            const auto own = m_list[i].kind == EKind::File ? std::nullopt : OwnShift(m_list[i]);
            if (!own || *own == -m_list[file].begin) continue;
            const std::int64_t place = m_list[i].begin + *own;
            if (own == m_shift || place == m_nextSegment || place == m_nextRecording) shift = own;
        }
        if (!shift) return std::nullopt;
        std::size_t first = file + 1;
        while (m_list[first].kind == EKind::File || OwnShift(m_list[first]) != shift)
            ++first;
        return first;
    }

    /// Returns the last segment of the outer recording: it comes after the last one of the inner file, or its well
    /// isn't listed there.
    std::size_t AfterLastSegment(std::size_t file) const {
        const CWellList* inside = nullptr;
        bool hasEnded = false;
        for (std::size_t i = file + 1; i < m_list.size() && m_list[i].kind != EKind::File; ++i) {
            const CCandidate& candidate = m_list[i];
            const bool isLast = candidate.kind == EKind::Segment && candidate.next == kUnset;
            if (isLast && m_around != nullptr && m_around->Lists(candidate.well) &&
                (hasEnded || inside == nullptr || !inside->Lists(candidate.well)))
                return i;
            if (candidate.kind == EKind::Recording) inside = WellsOf(candidate);
            hasEnded = isLast;
        }
        return file;
    }

    const std::vector<CWellList>& m_lists;
    std::vector<CCandidate>& m_list;
    std::int64_t m_size;
    const CWellList* m_around = nullptr;  ///< The wells of the outer recording.
    std::optional<std::int64_t> m_shift;  ///< The shift of the last header.
    std::int64_t m_nextSegment = kLost;   ///< The places that the last headers point at.
    std::int64_t m_nextRecording = kLost;
};

}  // namespace

void LeaveOutFilesWithin(CCandidates& candidates, std::int64_t size) { CFilesWithin(candidates, size).LeaveOut(); }

}  // namespace vxfileio::recovery
