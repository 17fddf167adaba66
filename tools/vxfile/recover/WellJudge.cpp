#include "tools/vxfile/recover/WellJudge.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "tools/vxfile/recover/HeaderProbe.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

constexpr std::int64_t kNoMost = std::numeric_limits<std::int64_t>::max();

/// Readers take intervals within this.
constexpr std::int64_t kMostReadable = std::numeric_limits<std::int32_t>::max();

/// The segments of one well in the order of their times.
using CGroup = std::vector<CFoundSegment*>;

/// Intervals, both ends included, and how many segments go with each of them.
struct CTickRange {
    std::int64_t atLeast = 1;
    std::int64_t atMost = kNoMost;
    std::size_t segments = 1;

    bool Has(std::int64_t tick) const { return tick >= atLeast && tick <= atMost; }
};

/// Returns the intervals with which the times of a segment make as many samples as it has; none if no interval does.
CTickRange RangeOf(const CFoundSegment& segment) {
    const auto span = SpanOf({.TimeFrom = segment.from, .TimeTo = segment.to});
    if (!span) return {.atMost = 0};
    const auto length = static_cast<std::int64_t>(*span);
    const std::int64_t samples = segment.samples;
    return {.atLeast = length / samples + 1, .atMost = samples > 1 ? length / (samples - 1) : kNoMost};
}

std::size_t CountGoingWith(std::int64_t tick, const CGroup& group) {
    return static_cast<std::size_t>(
        std::ranges::count_if(group, [&](const auto* segment) { return RangeOf(*segment).Has(tick); }));
}

/// Returns the intervals that most segments go with, of those that can be read; none of the segments if there is none.
CTickRange MostShared(const CGroup& group) {
    std::vector<std::pair<std::int64_t, int>> ends;  // where ranges begin, or are over
    for (const auto* segment : group) {
        const CTickRange range = RangeOf(*segment);
        if (range.atLeast > std::min(range.atMost, kMostReadable)) continue;
        ends.emplace_back(range.atLeast, 1);
        if (range.atMost < kNoMost) ends.emplace_back(range.atMost + 1, -1);
    }
    std::ranges::sort(ends);
    CTickRange best{.segments = 0};
    std::size_t open = 0;
    for (auto end = ends.begin(); end != ends.end(); ++end) {
        open = end->second > 0 ? open + 1 : open - 1;
        if (open <= best.segments) continue;
        const auto next = std::next(end);
        best = {.atLeast = end->first, .atMost = next == ends.end() ? kNoMost : next->first - 1, .segments = open};
    }
    return best;
}

bool ShareTimes(const CFoundSegment& one, const CFoundSegment& other) {
    return one.from <= other.to && other.from <= one.to;
}

/// Calls `act(one, other)` for each segment of a well that shares times with one ahead of it.
void ForTwins(const CGroup& group, auto act) {
    CFoundSegment* latest = nullptr;
    for (CFoundSegment* const segment : group) {
        if (latest != nullptr && ShareTimes(*latest, *segment)) act(*latest, *segment);
        if (latest == nullptr || latest->to < segment->to) latest = segment;
    }
}

/// Tells whether a time comes behind another, by an interval at most.
bool Follows(std::int64_t time, std::int64_t before, std::int64_t tick) {
    return time > before &&
           static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(before) <= static_cast<std::uint64_t>(tick);
}

/// A segment and the well that it belongs to, which isn't the one that it names.
struct CStray {
    CFoundSegment* segment;
    std::int32_t well;
};

/// The segments of one recording.
class CRecordingJudge {
 public:
    CRecordingJudge(CInventory& inventory, std::uint32_t recording, std::span<CFoundSegment> segments)
        : m_inventory(inventory),
          m_recording(inventory.recordings[recording]),
          m_number(recording),
          m_segments(segments) {
        TakeList();
    }

    void Judge() {
        Group();
        const bool anyReturned = m_knowsWells && Return(Strays());
        if (anyReturned || !m_nameless.empty()) {
            for (CFoundSegment* const segment : m_nameless)
                segment->namesWell = true;  // what is left of its ID must do if no well was found for it
            Group();
        }
        MendMisfits();
        LoseMisfits();
        if (m_knowsWells) TellDoubts();
    }

 private:
    void TakeList();
    void Group();
    CWellInterval Elect(std::int32_t well, const CGroup& group) const;
    std::int64_t TickOf(std::int32_t well) const;
    std::pair<const CFoundSegment*, const CFoundSegment*> NeighboursOf(std::int32_t well, std::int64_t time) const;
    bool Lacks(std::int32_t well, const CFoundSegment& segment, bool mustAdjoin) const;
    std::vector<std::int32_t> WellsLacking(const CFoundSegment& segment, bool mustAdjoin) const;
    std::vector<CStray> Strays();
    std::optional<CStray> StrayOf(CFoundSegment& one, CFoundSegment& other) const;
    bool TakeTurns(const CFoundSegment& stray, const CFoundSegment& own, std::int32_t well) const;
    bool Return(std::vector<CStray> strays);
    void TellDoubts();
    void TellSharing(const CGroup& group);
    void MendMisfits();
    bool MendTime(CFoundSegment& segment);
    bool GoesOn(const CFoundSegment& segment) const;
    void LoseMisfits();
    CRemark RemarkOn(const CFoundSegment& segment, std::string why) const;

    CInventory& m_inventory;
    CFoundRecording& m_recording;
    std::uint32_t m_number;
    std::span<CFoundSegment> m_segments;  ///< In the order of the file.
    std::map<std::int32_t, CGroup> m_groups;
    CGroup m_nameless;  ///< Their IDs are lost, and no well was found for them yet.
    CGroup m_misfits;   ///< They don't go with the interval of their well.
    bool m_knowsWells = false;
    std::map<std::int32_t, std::int64_t> m_listed;  ///< The header's wells and their intervals; 0 if that isn't known.
    std::int64_t m_common = 0;                      ///< The interval of all listed wells; 0 if they differ.
};

void CRecordingJudge::TakeList() {
    m_knowsWells = !m_recording.cells.lost[RowOf(kRecordingCells, "WellIDs")];
    const bool knowsTicks = !m_recording.cells.lost[RowOf(kRecordingCells, "Ticks")];
    const auto& wells = m_recording.header.WellChannels;
    for (const auto& well : wells)
        m_listed.emplace(well.ID, knowsTicks ? std::max<std::int64_t>(well.Ticks, 0) : 0);
    const auto differs = [&](const auto& well) { return well.Ticks != wells.front().Ticks; };
    if (knowsTicks && !wells.empty() && std::ranges::none_of(wells, differs)) m_common = wells.front().Ticks;
}

/// Puts the segments together by wells, as these stand now, and finds out the intervals. Those whose times can't be
/// right are set aside.
void CRecordingJudge::Group() {
    m_groups.clear();
    m_misfits.clear();
    m_nameless.clear();
    for (CFoundSegment& segment : m_segments)
        (segment.namesWell ? m_groups[segment.wellID] : m_nameless).push_back(&segment);
    m_recording.wells.clear();
    for (auto& [well, group] : m_groups) {
        const CWellInterval interval = Elect(well, group);
        const auto goes = [&](const CFoundSegment* segment) { return RangeOf(*segment).Has(interval.ticks); };
        const auto misfits = std::stable_partition(group.begin(), group.end(), goes);
        m_misfits.insert(m_misfits.end(), misfits, group.end());
        group.erase(misfits, group.end());
        std::ranges::stable_sort(group, {}, &CFoundSegment::from);
        m_recording.wells[well] = interval;
    }
}

/// Where voices are equal, the header's interval stays. It has a voice of its own if another well has the same, if a
/// segment goes on with the one before it to the tick, and against segments that could have any larger one.
CWellInterval CRecordingJudge::Elect(std::int32_t well, const CGroup& group) const {
    const auto listed = m_listed.find(well);
    const std::int64_t told = listed != m_listed.end() ? listed->second : m_common;
    const std::size_t going = told > 0 ? CountGoingWith(told, group) : 0;
    if (going == group.size()) return {told, true};
    const CTickRange best = MostShared(group);
    const bool isShared = std::ranges::count(m_listed, told, [](const auto& entry) { return entry.second; }) > 1;
    const auto goesOn = [&](const CFoundSegment* before, const CFoundSegment* segment) {
        return TimeBehind(before->from, before->samples, told) == segment->from;
    };
    const bool hasSteps = std::ranges::adjacent_find(group, goesOn) != group.end();
    const std::size_t voices = going + (isShared || hasSteps || best.atMost == kNoMost ? 1 : 0);
    if (told > 0 && best.segments <= voices) return {told, true};
    if (best.atMost == kNoMost) return {best.atLeast, false};
    return {best.Has(kMostReadable) ? best.atLeast : best.atMost, true};
}

std::int64_t CRecordingJudge::TickOf(std::int32_t well) const {
    const auto found = m_recording.wells.find(well);
    if (found != m_recording.wells.end()) return found->second.ticks;
    const auto listed = m_listed.find(well);
    return listed == m_listed.end() ? 0 : listed->second;
}

/// Returns the last segment of a well that begins ahead of a time, and the first one that doesn't, or null.
std::pair<const CFoundSegment*, const CFoundSegment*> CRecordingJudge::NeighboursOf(std::int32_t well,
                                                                                    std::int64_t time) const {
    const auto found = m_groups.find(well);
    if (found == m_groups.end()) return {nullptr, nullptr};
    const CGroup& group = found->second;
    const auto behind = std::ranges::lower_bound(group, time, {}, &CFoundSegment::from);
    return {behind == group.begin() ? nullptr : *std::prev(behind), behind == group.end() ? nullptr : *behind};
}

/// Tells whether a well has nothing at the times of a segment that would go with its interval. `mustAdjoin` asks for
/// samples right ahead of them or right behind them, too.
bool CRecordingJudge::Lacks(std::int32_t well, const CFoundSegment& segment, bool mustAdjoin) const {
    const std::int64_t tick = TickOf(well);
    if (tick <= 0 || !RangeOf(segment).Has(tick)) return false;
    const auto [before, next] = NeighboursOf(well, segment.from);
    if ((next != nullptr && ShareTimes(*next, segment)) || (before != nullptr && ShareTimes(*before, segment)))
        return false;
    return !mustAdjoin || (next != nullptr && Follows(next->from, segment.to, tick)) ||
           (before != nullptr && Follows(segment.from, before->to, tick));
}

std::vector<std::int32_t> CRecordingJudge::WellsLacking(const CFoundSegment& segment, bool mustAdjoin) const {
    std::vector<std::int32_t> lacking;
    for (const auto& entry : m_listed) {
        const bool isOther = entry.first != segment.wellID || !segment.namesWell;
        if (isOther && Lacks(entry.first, segment, mustAdjoin)) lacking.push_back(entry.first);
    }
    return lacking;
}

/// Returns the segments that can be proved to belong to another well.
std::vector<CStray> CRecordingJudge::Strays() {
    std::vector<CStray> strays;
    const auto take = [&](CFoundSegment* segment) {
        const auto lacking = WellsLacking(*segment, true);
        if (lacking.size() == 1) strays.push_back({segment, lacking.front()});
    };
    std::ranges::for_each(m_misfits, take);
    for (CFoundSegment* const segment : m_nameless) {
        const auto lacking = WellsLacking(*segment, false);
        if (lacking.size() == 1) {
            strays.push_back({segment, lacking.front()});
        } else {
            take(segment);
        }
    }
    for (const auto& [well, group] : m_groups) {
        // More than one of a well that isn't listed are a well of their own.
        if (!m_listed.contains(well) && group.size() == 1) take(group.front());
        ForTwins(group, [&](CFoundSegment& one, CFoundSegment& other) {
            if (const auto stray = StrayOf(one, other)) strays.push_back(*stray);
        });
    }
    return strays;
}

/// Of two segments that share their times and name the same well, tells which one is another well's.
std::optional<CStray> CRecordingJudge::StrayOf(CFoundSegment& one, CFoundSegment& other) const {
    const auto lackOne = WellsLacking(one, true);
    const auto lackOther = WellsLacking(other, true);
    if (lackOne.size() + lackOther.size() == 1)
        return lackOne.empty() ? CStray{&other, lackOther.front()} : CStray{&one, lackOne.front()};
    if (lackOne.size() != 1 || lackOne != lackOther) return std::nullopt;
    const bool isOne = TakeTurns(one, other, lackOne.front());
    if (isOne == TakeTurns(other, one, lackOne.front())) return std::nullopt;
    return CStray{isOne ? &one : &other, lackOne.front()};
}

/// Tells whether the two wells take turns in the file if `stray` is the other one's. Between the two segments there
/// must be none of these wells, nor one of a well that isn't listed: that may be one of them.
bool CRecordingJudge::TakeTurns(const CFoundSegment& stray, const CFoundSegment& own, std::int32_t well) const {
    const auto isOfThem = [&](const CFoundSegment& segment) {
        return segment.wellID == well || segment.wellID == own.wellID || !m_listed.contains(segment.wellID);
    };
    const auto [low, high] = std::minmax({&stray, &own});
    if (std::any_of(low + 1, high, isOfThem)) return false;
    const CFoundSegment* const begin = m_segments.data();
    const CFoundSegment* const end = begin + m_segments.size();
    const auto before = std::find_if(std::make_reverse_iterator(low), std::make_reverse_iterator(begin), isOfThem);
    const CFoundSegment* const behind = std::find_if(high + 1, end, isOfThem);
    const std::int32_t lowWell = low == &stray ? well : own.wellID;
    const std::int32_t highWell = high == &stray ? well : own.wellID;
    const auto isOther = [&](const CFoundSegment& neighbour, std::int32_t than) {
        return neighbour.wellID != than && m_listed.contains(neighbour.wellID);
    };
    return (before == std::make_reverse_iterator(begin) || isOther(*before, lowWell)) &&
           (behind == end || isOther(*behind, highWell));
}

/// Gives strays to their wells, unless several would share their times there. Returns false if there was none.
bool CRecordingJudge::Return(std::vector<CStray> strays) {
    std::ranges::sort(strays, [](const CStray& one, const CStray& other) {
        return std::pair(one.well, one.segment->from) < std::pair(other.well, other.segment->from);
    });
    const auto collide = [](const CStray& one, const CStray& other) {
        return one.well == other.well && ShareTimes(*one.segment, *other.segment);
    };
    bool any = false;
    for (std::size_t i = 0; i < strays.size(); ++i) {
        if (i > 0 && collide(strays[i - 1], strays[i])) continue;
        if (i + 1 < strays.size() && collide(strays[i], strays[i + 1])) continue;
        const auto [segment, well] = strays[i];
        m_inventory.doubts.Add(RemarkOn(*segment, "the segment names this well, but by its times it is one of well " +
                                                      std::to_string(well) + ", where it is kept"));
        segment->wellID = well;
        segment->namesWell = true;
        any = true;
    }
    return any;
}

/// Tells once for each well what can't be decided.
void CRecordingJudge::TellDoubts() {
    for (const auto& [well, group] : m_groups) {
        if (m_listed.contains(well)) {
            TellSharing(group);
        } else {
            m_inventory.doubts.Add(RemarkOn(*group.front(), "the recording doesn't list this well, which has " +
                                                                Counted(group.size(), "segment") +
                                                                "; an ID may be damaged"));
        }
    }
}

void CRecordingJudge::TellSharing(const CGroup& group) {
    const CFoundSegment* first = nullptr;
    std::size_t count = 0;
    std::vector<std::int32_t> lacking;
    ForTwins(group, [&](const CFoundSegment& /*one*/, const CFoundSegment& other) {
        ++count;
        if (!lacking.empty()) return;
        lacking = WellsLacking(other, false);
        first = &other;
    });
    if (lacking.empty()) return;
    m_inventory.doubts.Add(RemarkOn(*first, "this well has two segments of the same times (" + Counted(count, "case") +
                                                "), while well " + std::to_string(lacking.front()) +
                                                " has none then; an ID may be damaged"));
}

/// Keeps segments of which one time is damaged where the well's other segments tell which one: those before and behind
/// go on with them to the tick if the other time is right.
void CRecordingJudge::MendMisfits() {
    bool any = false;
    for (CFoundSegment* const segment : m_misfits)
        any = MendTime(*segment) || any;
    if (any) Group();
}

bool CRecordingJudge::MendTime(CFoundSegment& segment) {
    const std::int64_t tick = TickOf(segment.wellID);
    const std::int64_t intervals = std::int64_t{segment.samples} - 1;
    CFoundSegment byFrom = segment;
    CFoundSegment byTo = segment;
    byFrom.to = TimeBehind(segment.from, intervals, tick).value_or(segment.to);
    byTo.from = TimeBehind(segment.to, -intervals, tick).value_or(segment.from);
    const bool isFrom = GoesOn(byFrom);
    if (isFrom == GoesOn(byTo)) return false;
    m_inventory.doubts.Add(RemarkOn(segment, std::string(isFrom ? "TimeTo" : "TimeFrom") +
                                                 " doesn't go with the interval; the well's other segments tell it"));
    segment = isFrom ? byFrom : byTo;
    return true;
}

/// Tells whether a segment goes on with the one of its well before or behind it, to the tick.
bool CRecordingJudge::GoesOn(const CFoundSegment& segment) const {
    const std::int64_t tick = TickOf(segment.wellID);
    const auto [before, next] = NeighboursOf(segment.wellID, segment.from);
    return Lacks(segment.wellID, segment, false) &&
           ((before != nullptr && TimeBehind(before->from, before->samples, tick) == segment.from) ||
            (next != nullptr && TimeBehind(segment.from, segment.samples, tick) == next->from));
}

void CRecordingJudge::LoseMisfits() {
    for (CFoundSegment* const segment : m_misfits) {
        m_inventory.losses.Add(RemarkOn(*segment, "its times don't go with the interval of its well, " +
                                                      std::to_string(TickOf(segment->wellID)) +
                                                      ": the well ID or a time is damaged"));
        segment->samples = 0;
    }
    std::erase_if(m_groups, [](const auto& group) { return group.second.empty(); });
    std::erase_if(m_recording.wells, [&](const auto& well) { return !m_groups.contains(well.first); });
}

CRemark CRecordingJudge::RemarkOn(const CFoundSegment& segment, std::string why) const {
    return {.from = segment.position,
            .to = segment.End(),
            .recording = m_number,
            .wellID = segment.wellID,
            .why = std::move(why)};
}

}  // namespace

void SettleWells(CInventory& inventory) {
    const std::span segments(inventory.segments);
    for (std::size_t begin = 0, end = 0; begin < segments.size(); begin = end) {
        const std::uint32_t recording = segments[begin].recording;
        while (end < segments.size() && segments[end].recording == recording)
            ++end;
        CRecordingJudge(inventory, recording, segments.subspan(begin, end - begin)).Judge();
    }
    std::erase_if(inventory.segments, [](const CFoundSegment& segment) { return segment.samples == 0; });
}

}  // namespace vxfile
