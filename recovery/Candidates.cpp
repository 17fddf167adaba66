#include "recovery/Candidates.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "vxfileio/helpers/NumberText.h"
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

/// Reads a header in one form. The wells are read only when the candidate is kept.
CCandidate Read(CWindow& window, const CForm& form, const CHdrPlace& place) {
    const CHdrCells cells = CellsAt(window, form, place);
    const auto number = [&](std::string_view key) { return helpers::ParseInt64(cells.Value(key)); };
    const auto position = [&](std::string_view key) { return cells.IsLost(key) ? kLost : number(key); };
    CCandidate candidate{.begin = place.begin, .end = place.End(form)};
    candidate.kind = form.kind;
    candidate.form = &form;
    candidate.moved = static_cast<std::int16_t>(place.moved);
    candidate.movedRow = static_cast<std::uint8_t>(place.movedRow);
    candidate.damaged = static_cast<std::uint8_t>(cells.damaged.count());
    candidate.whole = static_cast<std::uint8_t>(form.cells.size() - cells.damaged.count());
    std::size_t first = 0;
    while (first + 1 < form.cells.size() && cells.lost[first])
        ++first;
    candidate.claim = place.OffsetOf(form, first);
    if (form.kind == EKind::File) {
        candidate.next = position("FPosFirstRecordingHdr");
    } else if (form.kind == EKind::Recording) {
        candidate.next = position("FPosRecordingData");
        candidate.from = position("FPosNextRecordingHdr");
    } else {
        candidate.next = position("FPosNextSegmentHdr");
        candidate.from = number("TimeFrom");
        candidate.to = number("TimeTo");
        // A lost one may be any number; sums with it must not overflow.
        candidate.size = std::clamp(number("Size"), std::int64_t{0}, kMostSamples);
        candidate.well = helpers::ParseInt32(cells.Value("ID"));
        candidate.noID = cells.IsLost("ID");
        candidate.noFrom = cells.IsLost("TimeFrom");
        candidate.noTo = cells.IsLost("TimeTo");
        candidate.noSize = cells.IsLost("Size");
    }
    return candidate;
}

/// Returns whether the position of a file or recording header points at the end of the header.
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
        for (const EKind kind : {EKind::File, EKind::Recording, EKind::Segment}) {
            for (const CForm& form : FormsOf(kind))
                AddAnchors(form);
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

    void AddAnchors(const CForm& form) {
        for (const CFormCell& cell : form.cells) {
            if (cell.key.empty()) continue;
            auto& anchors = m_anchors[static_cast<unsigned char>(cell.key.back())];
            const CAnchor anchor{form.kind, cell.key, cell.offset, cell.width};
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
        const CCandidate best = BestAt(m_window, kind, begin);
        if (best.IsWhole()) {
            Keep(best);
            if (kind == EKind::Segment) SkipSamples(best);
            return;
        }
        for (const CForm& form : FormsOf(kind)) {
            const CCandidate candidate = Read(m_window, form, {.begin = begin});
            if (IsCredible(candidate)) Keep(candidate);
            FindMoved(form, begin);
        }
    }

    bool IsCredible(const CCandidate& candidate) {
        if (MostIsWhole(candidate)) return true;
        if (candidate.kind == EKind::File) return candidate.begin <= 0 && candidate.whole >= 2;
        return candidate.kind == EKind::Recording && candidate.whole > 0 &&
               (KnowsItsPlace(candidate) || BestAt(m_window, EKind::Segment, candidate.end).IsWhole());
    }

    /// Keeps a candidate. If it begins within a damaged recording header, that one may end there.
    void Keep(const CCandidate& candidate) {
        const auto size = static_cast<std::int64_t>(Layouts().back().recording.size);
        int left = kMostShortened;
        for (std::size_t i = m_found.list.size();
             i > 0 && left > 0 && m_found.list[i - 1].claim + size > candidate.begin; --i) {
            const CCandidate around = m_found.list[i - 1];
            if (!MayEndAt(around, candidate)) continue;
            AddShortened(around, candidate.claim);
            --left;
        }
        m_found.list.push_back(candidate);
    }

    /// Returns whether a candidate is a damaged recording header with its beginning, in which another header begins.
    /// Two readings of one recording header end together.
    static bool MayEndAt(const CCandidate& header, const CCandidate& other) {
        return header.kind == EKind::Recording && !header.IsWhole() && header.moved == 0 &&
               header.claim == header.begin && header.begin < other.claim && other.claim < header.end &&
               (other.kind != EKind::Recording || other.end != header.end);
    }

    /// Adds a header that ends early: without its end, and if that makes more cells whole, without bytes before some
    /// row.
    void AddShortened(const CCandidate& header, std::int64_t end) {
        const auto read = [&](std::size_t row) {
            return Read(m_window, *header.form, {.begin = header.begin, .movedRow = row, .moved = end - header.end});
        };
        const CCandidate cut = read(header.form->cells.size());
        CCandidate best = cut;
        for (std::size_t row = header.form->cells.size(); row-- > 0;) {
            const CCandidate joined = read(row);
            if (joined.whole > best.whole) best = joined;
        }
        m_found.list.push_back(cut);
        if (best.whole > cut.whole) m_found.list.push_back(best);
    }

    /// Finds where the rest of a header is if bytes were inserted into it or removed from it: from the key of a cell
    /// after the last whole one, or from the line end of the last cell.
    void FindMoved(const CForm& form, std::int64_t begin) {
        const CHdrCells cells = CellsAt(m_window, form, {.begin = begin});
        const std::size_t rows = form.cells.size();
        std::size_t changed = rows;
        while (changed > 0 && cells.damaged[changed - 1])
            --changed;
        if (cells.damaged[0] || changed == rows) return;
        const std::size_t offset = form.cells[changed].offset;
        const std::size_t last = cells.lost[rows - 1] ? rows - 1 : rows;
        const std::string text(
            m_window.At(begin + static_cast<std::int64_t>(offset), 2 * static_cast<std::size_t>(form.size)));
        for (std::size_t row = changed; row <= std::min(last, changed + rows / 4); ++row) {
            const std::string_view mark = row == rows ? "\n" : form.cells[row].key;
            const auto expected = row == rows ? form.size - 1 : static_cast<std::int64_t>(form.cells[row].offset);
            int left = kMostMarks;
            for (std::size_t at = text.find(mark); at < text.size() && left > 0; at = text.find(mark, at + 1), --left) {
                const std::int64_t moved = static_cast<std::int64_t>(offset + at) - expected;
                if (moved == 0 || std::abs(moved) > form.size) continue;
                const CCandidate found = Read(m_window, form, {.begin = begin, .movedRow = row, .moved = moved});
                // A segment header that begins there is one of its own. For a recording header, positions decide that.
                const bool isOne = row == rows || form.kind != EKind::Segment ||
                                   Read(m_window, form, {.begin = begin + moved}).claim >=
                                       begin + moved + static_cast<std::int64_t>(offset);
                if (std::size_t{4} * found.damaged <= rows && isOne) Keep(found);
            }
        }
    }

    /// Continues after the samples of a segment that the next header confirms: the positions of both have the same
    /// shift.
    void SkipSamples(const CCandidate& segment) {
        if (!IsConsistent(segment)) return;
        const std::int64_t end = segment.DataEnd();
        if (end > m_window.Size()) return;
        if (end == m_window.Size() || IsProvedBy(segment, end)) m_goOn = std::max(m_goOn, end);
    }

    bool IsProvedBy(const CCandidate& segment, std::int64_t end) {
        if (segment.next == kUnset) return BestAt(m_window, EKind::Recording, end).IsWhole();
        const CCandidate next = BestAt(m_window, EKind::Segment, end);
        return next.IsWhole() && IsConsistent(next) &&
               next.OwnShift().value_or(segment.next - end) == segment.next - end;
    }

    static constexpr int kMostShortened = 2;  ///< Both versions of one header.
    static constexpr std::size_t kMostSeen = 256;
    static constexpr int kMostMarks = 8;

    CWindow& m_window;
    const CReach& m_reach;
    CCandidates& m_found;
    std::array<std::vector<CAnchor>, 256> m_anchors;  ///< By the last character of their keys.
    std::set<std::pair<std::int64_t, EKind>> m_seen;
    std::int64_t m_goOn = 0;
};

/// Of the readings of one header that end together, with cells that moved equally far, keeps those with the most whole
/// cells. If they moved differently, positions show which reading is right.
void LeaveOutWorseReadings(std::vector<CCandidate>& list) {
    const auto group = [](const CCandidate& one) { return std::tuple(one.end, one.kind, one.moved, one.IsJoined()); };
    const auto rank = [&](const CCandidate& one) {
        return std::tuple(group(one), -one.whole, one.form->layout, one.movedRow);
    };
    std::ranges::sort(list, {}, rank);
    auto end = list.begin();  // of those that stay
    for (const CCandidate& one : list) {
        const bool isWorse = end != list.begin() && one.kind != EKind::Segment && group(one) == group(end[-1]) &&
                             (one.whole < end[-1].whole || one.form == end[-1].form);
        if (!isWorse) *end++ = one;
    }
    list.erase(end, list.end());
}

/// Reads which wells the recording headers list.
void ReadWellLists(CWindow& window, CCandidates& found) {
    for (CCandidate& candidate : found.list) {
        if (candidate.kind != EKind::Recording) continue;
        candidate.well = static_cast<std::int32_t>(found.wellLists.size());
        found.wellLists.push_back(WellListOf(CellsAt(window, *candidate.form, candidate.Place())));
    }
}

}  // namespace

std::int64_t CWellList::TickOf(std::int32_t well) const {
    const auto found = wells.find(well);
    return found == wells.end() ? 0 : found->second;
}

std::int64_t CWellList::CommonTick() const {
    const auto differs = [&](const auto& well) { return well.second != wells.begin()->second; };
    return wells.empty() || std::ranges::any_of(wells, differs) ? 0 : wells.begin()->second;
}

std::optional<std::int64_t> CCandidate::OwnShift() const {
    if (noSize || !IsPosition(next)) return std::nullopt;
    if (kind == EKind::File) return -begin;
    return next - DataEnd() + moved;
}

const CCandidate* CCandidates::WholeAt(EKind kind, std::int64_t offset) const {
    auto found = std::ranges::lower_bound(list, offset, {}, &CCandidate::claim);
    while (found != list.end() && found->claim == offset && (found->kind != kind || !found->IsWhole()))
        ++found;
    return found != list.end() && found->claim == offset ? &*found : nullptr;
}

const CWellList& CCandidates::WellsOf(const CCandidate* recording) const {
    static const CWellList kNone;
    const bool isKnown = recording != nullptr && recording->form != nullptr;
    return isKnown ? wellLists[static_cast<std::size_t>(recording->well)] : kNone;
}

CCandidate BestAt(CWindow& window, EKind kind, std::int64_t offset, std::int64_t end) {
    CCandidate best;
    for (const CForm& form : FormsOf(kind)) {
        const CCandidate candidate = Read(window, form, {.begin = offset});
        if (candidate.end <= end && candidate.whole >= best.whole) best = candidate;
    }
    return best;
}

CWellList WellListOf(const CHdrCells& recording) {
    CWellList list;
    CRawDataRecordingHdr header;
    if (recording.IsLost("WellIDs") || !Decode(Layouts()[recording.form->layout], recording.bytes, header)) return list;
    for (const auto& well : header.WellChannels)
        list.wells.emplace(well.ID, recording.IsLost("Ticks") ? 0 : std::max<std::int64_t>(well.Ticks, 0));
    return list;
}

CCandidates FindCandidates(CWindow& window, const CReach& reach) {
    CCandidates found;
    CWindow text = window;
    CSearch(window, reach, found).Run(text);
    LeaveOutWorseReadings(found.list);
    ReadWellLists(window, found);
    std::ranges::stable_sort(found.list, {}, &CCandidate::claim);
    return found;
}

bool LooksLikeHeader(CWindow& window, std::int64_t offset) {
    const auto left = static_cast<std::size_t>(std::max<std::int64_t>(window.Size() - offset, 0));
    return std::ranges::any_of(std::array{EKind::Segment, EKind::Recording}, [&](EKind kind) {
        const CCandidate best = BestAt(window, kind, offset);
        const auto& cells = best.form->cells;
        const CRows damaged = CellsAt(window, *best.form, best.Place()).damaged;
        const std::string_view key = window.At(offset, cells.front().key.size());
        if (left < cells.front().width) return !key.empty() && cells.front().key.starts_with(key);
        std::ptrdiff_t balance = 0;
        for (std::size_t row = 0; row < cells.size() && cells[row].End() <= left; ++row)
            balance += damaged[row] ? -1 : 1;
        return balance > 0 || (balance == 0 && best.whole > 0);
    });
}

}  // namespace vxfileio::recovery
