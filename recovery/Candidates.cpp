#include "recovery/Candidates.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10;

/// A cell that locates its header, by its key and its offset in the header.
struct CAnchor {
    EKind kind;
    std::string_view key;
    std::size_t offset;
    std::size_t width;

    bool operator==(const CAnchor&) const = default;
};

/// Calls `act` with the part of a layout that describes headers of a kind.
template <class Act>
auto WithHdr(const CLayout& layout, EKind kind, Act act) {
    if (kind == EKind::File) return act(layout.file);
    if (kind == EKind::Recording) return act(layout.recording);
    return act(layout.segment);
}

/// Returns the position in the cell with this key, or `kLost`.
std::int64_t PositionIn(const auto& layout, std::string_view key, std::string_view bytes, const CDamage& damage) {
    const auto& cell = layout[key];
    return damage.lost[layout.RowOf(cell)] ? kLost : helpers::ParseInt64(CellValue(CellIn(cell, bytes)));
}

/// Sets the fields of a segment header.
void FillSegment(const CLayout& layout, std::string_view bytes, const CDamage& damage, CCandidate& candidate) {
    const auto& cells = layout.segment;
    const auto isLost = [&](std::string_view key) { return damage.lost[cells.RowOf(cells[key])]; };
    CSegmentHdr header;
    Decode(layout, bytes, header);
    candidate.next = isLost("FPosNextSegmentHdr") ? kLost : header.FPosNextSegmentHdr;
    candidate.from = header.TimeFrom;
    candidate.to = header.TimeTo;
    candidate.size = header.Size;
    candidate.well = header.ID;
    candidate.noID = isLost("ID");
    candidate.noFrom = isLost("TimeFrom");
    candidate.noTo = isLost("TimeTo");
    candidate.noSize = isLost("Size") || header.Size < 1 || header.Size > kMostSamples;
    if (candidate.noSize && candidate.IsWhole()) candidate.damaged = 1;
}

/// Reads a header in one layout. The wells are read only when the candidate is kept.
CCandidate Read(CWindow& window, EKind kind, std::size_t layout, const CHdrPlace& place) {
    const CLayout& all = Layouts()[layout];
    return WithHdr(all, kind, [&](const auto& cells) {
        const std::string bytes = HdrBytes(window, cells, place);
        const CDamage damage = DamageOf(cells, bytes);
        CCandidate candidate{.begin = place.begin, .end = place.End(cells)};
        candidate.kind = kind;
        candidate.layout = static_cast<std::uint8_t>(layout);
        candidate.moved = static_cast<std::int16_t>(place.moved);
        candidate.movedRow = static_cast<std::uint8_t>(place.movedRow);
        candidate.damaged = static_cast<std::uint8_t>(damage.damaged.count());
        candidate.whole = static_cast<std::uint8_t>(cells.cells.size() - damage.damaged.count());
        std::size_t first = 0;
        while (first + 1 < cells.cells.size() && damage.lost[first])
            ++first;
        candidate.claim = place.OffsetOf(cells, first);
        if (kind == EKind::File) candidate.next = PositionIn(all.file, "FPosFirstRecordingHdr", bytes, damage);
        if (kind == EKind::Recording) {
            candidate.next = PositionIn(all.recording, "FPosRecordingData", bytes, damage);
            candidate.from = PositionIn(all.recording, "FPosNextRecordingHdr", bytes, damage);
        }
        if (kind == EKind::Segment) FillSegment(all, bytes, damage, candidate);
        return candidate;
    });
}

bool KnowsItsPlace(const CCandidate& candidate) { return candidate.next == candidate.end; }

bool MostIsWhole(const CCandidate& candidate) { return candidate.whole >= candidate.damaged; }

/// Returns whether an interval exists that fits the times and the size.
bool IsConsistent(const CCandidate& candidate) {
    return !TicksOf(candidate.from, candidate.to, candidate.size).IsEmpty();
}

/// Searches for `=`: every number has one, so each header with a legible cell is found.
class CSearch {
 public:
    CSearch(CWindow& window, const CReach& reach, CCandidates& found)
        : m_window(window), m_reach(reach), m_found(found) {
        for (const CLayout& layout : Layouts()) {
            for (const EKind kind : {EKind::File, EKind::Recording, EKind::Segment})
                WithHdr(layout, kind, [&](const auto& cells) { AddAnchors(kind, cells); });
        }
    }

    void Run(CWindow& text) {
        for (std::int64_t position = 0; position < text.Size();) {
            m_reach(position);
            const auto before = static_cast<std::size_t>(std::min<std::int64_t>(position, kLongestKey));
            const std::string_view block = text.At(position - static_cast<std::int64_t>(before), before + kBlock);
            const std::size_t at = block.find('=', before);
            if (at == std::string_view::npos) {
                position += static_cast<std::int64_t>(block.size() - before);
                continue;
            }
            position += static_cast<std::int64_t>(at - before);
            m_goOn = position + 1;
            Look(block.substr(0, at), position);
            position = m_goOn;
        }
    }

 private:
    static constexpr std::int64_t kLongestKey = 32;

    /// The whole rows of a part of a header, for joining the parts before and after inserted bytes.
    struct CPart {
        EKind kind;
        std::size_t layout;
        std::int64_t begin;
        std::size_t firstWhole;
        std::size_t lastWhole;
        std::size_t whole;
    };

    void AddAnchors(EKind kind, const auto& cells) {
        for (const auto& cell : cells.cells) {
            if (cell.key.empty() || cell.key.size() > static_cast<std::size_t>(kLongestKey)) continue;
            auto& anchors = m_anchors[static_cast<unsigned char>(cell.key.back())];
            const CAnchor anchor{kind, cell.key, cell.offset, cell.width};
            if (std::ranges::find(anchors, anchor) == anchors.end()) anchors.push_back(anchor);
        }
    }

    void Look(std::string_view before, std::int64_t position) {
        if (before.empty()) return;
        for (const CAnchor& anchor : m_anchors[static_cast<unsigned char>(before.back())]) {
            if (!before.ends_with(anchor.key)) continue;
            const std::int64_t cell = position - static_cast<std::int64_t>(anchor.key.size());
            if (m_window.At(cell + static_cast<std::int64_t>(anchor.width) - 2, 2) != "\r\n") continue;
            const std::int64_t begin = cell - static_cast<std::int64_t>(anchor.offset);
            if (m_seen.emplace(begin, anchor.kind).second) Consider(anchor.kind, begin);
        }
        while (m_seen.size() > kMostSeen)
            m_seen.erase(m_seen.begin());
    }

    void Consider(EKind kind, std::int64_t begin) {
        const CCandidate candidate = BestAt(m_window, kind, begin);
        if (IsCredible(candidate)) Keep(candidate);
        if (candidate.IsWhole()) {
            if (kind == EKind::Segment) SkipSamples(candidate);
            return;
        }
        JoinParts(kind, begin);
        if (kind == EKind::Segment) FindLineEnd(candidate);
    }

    bool IsCredible(const CCandidate& candidate) {
        if (MostIsWhole(candidate)) return true;
        if (candidate.kind == EKind::File) return candidate.begin <= 0 && candidate.whole >= 2;
        if (candidate.kind == EKind::Segment || candidate.whole == 0) return false;
        return (candidate.claim == candidate.begin && KnowsItsPlace(candidate)) ||
               BestAt(m_window, EKind::Segment, candidate.end).IsWhole();
    }

    void Keep(CCandidate candidate) {
        if (candidate.kind == EKind::Recording) {
            candidate.well = static_cast<std::int32_t>(m_found.wellLists.size());
            m_found.wellLists.push_back(WellListOf(m_window, candidate, candidate.end));
        }
        m_found.list.push_back(candidate);
    }

    /// Joins this part of a header with an earlier one, in case bytes were inserted or removed between them.
    void JoinParts(EKind kind, std::int64_t begin) {
        for (std::size_t layout = 0; layout < Layouts().size(); ++layout) {
            WithHdr(Layouts()[layout], kind, [&](const auto& cells) {
                const CRows damaged = DamageOf(cells, HdrBytes(m_window, cells, {.begin = begin})).damaged;
                CPart part{kind, layout, begin, cells.cells.size(), 0, 0};
                for (std::size_t row = 0; row < cells.cells.size(); ++row) {
                    if (damaged[row]) continue;
                    part.firstWhole = std::min(part.firstWhole, row);
                    part.lastWhole = row;
                    ++part.whole;
                }
                if (part.whole == 0) return;
                for (const CPart& front : m_parts)
                    JoinParts(front, part, cells);
                m_parts.push_back(part);
            });
        }
        while (m_parts.size() > kMostParts)
            m_parts.erase(m_parts.begin());
    }

    void JoinParts(const CPart& front, const CPart& rear, const auto& cells) {
        const std::int64_t moved = rear.begin - front.begin;
        const std::size_t rows = cells.cells.size();
        if (front.kind != rear.kind || front.layout != rear.layout || moved == 0 ||
            std::abs(moved) >= static_cast<std::int64_t>(cells.size) || front.lastWhole >= rear.firstWhole)
            return;
        // The rear must be after the front: some keys occur twice in a header.
        if (rear.begin + static_cast<std::int64_t>(cells.cells[rear.firstWhole].offset) <
            front.begin + static_cast<std::int64_t>(cells.cells[front.lastWhole].End()))
            return;
        const std::size_t missing = rows - std::min(rows, front.whole + rear.whole);
        if (front.firstWhole > 0 || rear.lastWhole + 1 < rows || 4 * missing > rows) return;
        const CCandidate joined = Read(m_window, front.kind, front.layout, {front.begin, rear.firstWhole, moved});
        if (joined.damaged <= missing) Keep(joined);
    }

    /// No cell follows the last one, so its line end shows by how much it grew or shrank.
    void FindLineEnd(const CCandidate& candidate) {
        const auto& cells = Layouts()[candidate.layout].segment;
        const auto& last = cells.cells.back();
        if (candidate.damaged != 1 || candidate.noSize) return;
        const std::int64_t begin = candidate.begin + static_cast<std::int64_t>(last.offset);
        const std::string bytes(m_window.At(begin, last.width + cells.size));
        const std::size_t text = CellText(std::string_view(bytes).substr(0, last.width)).size();
        int left = kMostLineEnds;
        for (std::size_t end = bytes.find('\n', text); end < bytes.size() && left > 0;
             end = bytes.find('\n', end + 1)) {
            const std::int64_t moved = static_cast<std::int64_t>(end + 1) - static_cast<std::int64_t>(last.width);
            if (moved == 0) continue;
            --left;
            CCandidate grown = candidate;
            grown.moved = static_cast<std::int16_t>(moved);
            grown.movedRow = static_cast<std::uint8_t>(cells.cells.size());
            grown.end += moved;
            Keep(grown);
        }
    }

    /// Continues after the samples of a segment that the next header confirms: the positions of both have the same
    /// shift.
    void SkipSamples(const CCandidate& segment) {
        if (!IsConsistent(segment)) return;
        const std::int64_t end = segment.end + 2 * segment.size;
        if (end > m_window.Size()) return;
        if (end == m_window.Size() || IsProvedBy(segment, end)) m_goOn = std::max(m_goOn, end);
    }

    bool IsProvedBy(const CCandidate& segment, std::int64_t end) {
        if (segment.next == kUnset) return BestAt(m_window, EKind::Recording, end).IsWhole();
        const std::int64_t shift = segment.next - end;
        const CCandidate next = BestAt(m_window, EKind::Segment, end);
        if (!next.IsWhole() || !IsConsistent(next)) return false;
        const bool agrees = next.next == kUnset ? shift == m_shift : next.next - next.end - 2 * next.size == shift;
        if (agrees) m_shift = shift;
        return agrees;
    }

    static constexpr std::size_t kMostSeen = 256;
    static constexpr std::size_t kMostParts = 16;
    static constexpr int kMostLineEnds = 8;

    CWindow& m_window;
    const CReach& m_reach;
    CCandidates& m_found;
    std::array<std::vector<CAnchor>, 256> m_anchors;
    std::set<std::pair<std::int64_t, EKind>> m_seen;
    std::vector<CPart> m_parts;
    std::int64_t m_goOn = 0;
    std::int64_t m_shift = 0;  ///< The last confirmed shift of positions.
};

}  // namespace

std::int64_t CWellList::TickOf(std::int32_t well) const {
    const auto found = std::ranges::find(wells, well, [](const auto& entry) { return entry.first; });
    return found == wells.end() ? 0 : found->second;
}

std::int64_t CWellList::CommonTick() const {
    const auto differs = [&](const auto& well) { return well.second != wells.front().second; };
    return wells.empty() || std::ranges::any_of(wells, differs) ? 0 : wells.front().second;
}

bool CWellList::Lists(std::int32_t well) const {
    return std::ranges::any_of(wells, [&](const auto& entry) { return entry.first == well; });
}

CCandidate BestAt(CWindow& window, EKind kind, std::int64_t offset) {
    CCandidate best;
    const auto rank = [&](const CCandidate& candidate) {
        const bool isPlaced = kind == EKind::Recording && KnowsItsPlace(candidate);
        return (isPlaced ? 1000 : 0) + candidate.whole - candidate.damaged;
    };
    for (std::size_t layout = 0; layout < Layouts().size(); ++layout) {
        const CCandidate candidate = Read(window, kind, layout, {.begin = offset});
        if (layout == 0 || rank(candidate) >= rank(best)) best = candidate;
    }
    return best;
}

CWellList WellListOf(CWindow& window, const CCandidate& recording, std::int64_t cutAt) {
    const CLayout& layout = Layouts()[recording.layout];
    const auto& cells = layout.recording;
    const std::string bytes = HdrBytes(window, cells, recording.Place());
    const CRows lost = DamageOf(cells, bytes).lost;
    const auto isThere = [&](std::string_view key) {
        const std::size_t row = cells.RowOf(cells[key]);
        return !lost[row] &&
               recording.Place().OffsetOf(cells, row) + static_cast<std::int64_t>(cells.cells[row].width) <= cutAt;
    };
    CRawDataRecordingHdr header;
    CWellList list{.wells = {}, .knowsWells = isThere("WellIDs"), .knowsTicks = isThere("Ticks")};
    if (!Decode(layout, bytes, header) || !list.knowsWells) header.WellChannels.clear();
    for (const auto& well : header.WellChannels)
        list.wells.emplace_back(well.ID, list.knowsTicks ? std::max<std::int64_t>(well.Ticks, 0) : 0);
    list.knowsWells = !list.wells.empty();
    return list;
}

namespace {

/// Both versions may fit the end of a header: keeps the reading with more whole cells.
void LeaveOutWorseReadings(std::vector<CCandidate>& list) {
    const auto rank = [](const CCandidate& candidate) {
        return std::tuple(candidate.end, candidate.kind, -candidate.whole, candidate.damaged);
    };
    std::ranges::sort(list, {}, rank);
    const auto isSame = [](const CCandidate& one, const CCandidate& other) {
        return one.end == other.end && one.kind == other.kind && one.kind != EKind::Segment && other.damaged > 0;
    };
    list.erase(std::unique(list.begin(), list.end(), isSame), list.end());
}

}  // namespace

CCandidates FindCandidates(CWindow& window, const CReach& reach) {
    CCandidates found;
    CWindow text = window;
    CSearch(window, reach, found).Run(text);
    LeaveOutWorseReadings(found.list);
    std::ranges::stable_sort(found.list, {}, &CCandidate::claim);
    return found;
}

bool LooksLikeHeader(CWindow& window, std::int64_t offset) {
    const auto left = static_cast<std::size_t>(std::max<std::int64_t>(window.Size() - offset, 0));
    return std::ranges::any_of(std::array{EKind::Segment, EKind::Recording}, [&](EKind kind) {
        const CCandidate best = BestAt(window, kind, offset);
        const CRows damaged = DamageOf(window, best).damaged;
        return WithHdr(Layouts()[best.layout], kind, [&](const auto& cells) {
            const auto& first = cells.cells.front();
            const std::string_view key = window.At(offset, first.key.size());
            if (left < first.width) return !key.empty() && first.key.starts_with(key);
            std::ptrdiff_t balance = 0;
            for (std::size_t row = 0; row < cells.cells.size() && cells.cells[row].End() <= left; ++row)
                balance += damaged[row] ? -1 : 1;
            return balance > 0 || (balance == 0 && best.whole > 0);
        });
    });
}

CDamage DamageOf(CWindow& window, const CCandidate& candidate) {
    return WithHdr(Layouts()[candidate.layout], candidate.kind,
                   [&](const auto& cells) { return DamageOf(cells, HdrBytes(window, cells, candidate.Place())); });
}

}  // namespace vxfileio::recovery
