#include "recovery/Wells.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// The largest interval that readers accept.
constexpr std::int64_t kMostReadable = std::numeric_limits<std::int32_t>::max();

/// The segments of one well, sorted by time.
using CGroup = std::vector<CFoundSegment*>;

/// Intervals, and how many segments fit each of them.
struct CShared {
    CTickRange intervals;
    std::size_t segments = 0;
};

CTickRange TicksOf(const CFoundSegment& segment) { return rawdata::TicksOf(segment.from, segment.to, segment.samples); }

/// Returns the readable intervals that most segments fit.
CShared MostShared(const CGroup& group) {
    std::vector<std::pair<std::int64_t, int>> ends;  // where ranges begin, or are over
    for (const auto* segment : group) {
        const CTickRange range = TicksOf(*segment);
        if (range.atLeast > std::min(range.atMost, kMostReadable)) continue;
        ends.emplace_back(range.atLeast, 1);
        if (!range.IsOpen()) ends.emplace_back(range.atMost + 1, -1);
    }
    std::ranges::sort(ends);
    CShared best;
    std::size_t open = 0;
    for (auto end = ends.begin(); end != ends.end(); ++end) {
        open = end->second > 0 ? open + 1 : open - 1;
        if (open <= best.segments) continue;
        best = {{.atLeast = end->first}, open};
        if (const auto next = std::next(end); next != ends.end()) best.intervals.atMost = next->first - 1;
    }
    return best;
}

bool ShareTimes(const CFoundSegment& one, const CFoundSegment& other) {
    return one.from <= other.to && other.from <= one.to;
}

/// Calls `act(one, other)` for each segment of a well that overlaps an earlier one.
void ForTwins(const CGroup& group, auto act) {
    CFoundSegment* latest = nullptr;
    for (CFoundSegment* const segment : group) {
        if (latest != nullptr && ShareTimes(*latest, *segment)) act(*latest, *segment);
        if (latest == nullptr || latest->to < segment->to) latest = segment;
    }
}

/// Returns whether a segment continues another one to the tick.
bool GoesOn(const CFoundSegment& before, const CFoundSegment& segment, std::int64_t tick) {
    return TimeAfter(before.from, before.samples, tick) == segment.from;
}

/// A segment and the well that it belongs to, which isn't the one it names.
struct CStray {
    CFoundSegment* segment;
    std::int32_t well;
};

/// The segments of one recording.
class CRecordingWells {
 public:
    CRecordingWells(CFound& found, std::uint32_t recording, std::span<CFoundSegment> segments)
        : m_found(found),
          m_recording(found.recordings[recording]),
          m_listed(m_recording.wellList),
          m_number(recording),
          m_segments(segments) {}

    void Settle() {
        Group();
        auto strays = Strays();
        if (!strays.empty() || !m_nameless.empty()) {
            Return(std::move(strays));
            for (CFoundSegment* const segment : m_nameless)
                segment->namesWell = true;  // no well was found for it, so what is left of its ID must do
            Group();
        }
        MendMisfits();
        LoseMisfits();
        ReportDoubts();
    }

 private:
    /// Groups the segments by the wells that they name now, and determines the intervals. Sets those with impossible
    /// times aside.
    void Group() {
        m_groups.clear();
        m_misfits.clear();
        m_nameless.clear();
        for (CFoundSegment& segment : m_segments) {
            Complete(segment, {});
            (segment.namesWell ? m_groups[segment.wellID] : m_nameless).push_back(&segment);
        }
        m_recording.wells.clear();
        m_isTrusted = MostGoWithTheHeader();
        for (auto& [well, group] : m_groups) {
            const CWellInterval interval = Elect(well, group);
            for (CFoundSegment* const segment : group)
                Complete(*segment, interval);
            const auto goes = [&](const CFoundSegment* segment) { return TicksOf(*segment).Has(interval.ticks); };
            const auto misfits = std::stable_partition(group.begin(), group.end(), goes);
            m_misfits.insert(m_misfits.end(), misfits, group.end());
            group.erase(misfits, group.end());
            std::ranges::stable_sort(group, {}, &CFoundSegment::from);
            m_recording.wells[well] = interval;
        }
    }

    /// Computes the lost time of a segment. Until the interval of its well is known, it fits none.
    static void Complete(CFoundSegment& segment, const CWellInterval& interval) {
        using CLimits = std::numeric_limits<std::int64_t>;
        const std::int64_t span = std::int64_t{segment.samples} - 1;
        const std::int64_t tick = interval.isKnown ? interval.ticks : 0;
        if (segment.made == EMade::From) segment.from = TimeAfter(segment.to, -span, tick).value_or(CLimits::max());
        if (segment.made == EMade::To) segment.to = TimeAfter(segment.from, span, tick).value_or(CLimits::min());
    }

    /// Returns the interval of a well in the recording header; 0 if unknown.
    std::int64_t Listed(std::int32_t well) const {
        return m_listed.Lists(well) ? m_listed.TickOf(well) : m_listed.CommonTick();
    }

    /// Returns whether at least half of the segments fit the header's intervals. If not, it is another recording's
    /// header.
    bool MostGoWithTheHeader() const {
        const auto goes = [&](const CFoundSegment& segment) { return TicksOf(segment).Has(Listed(segment.wellID)); };
        return 2 * std::ranges::count_if(m_segments, goes) >= std::ssize(m_segments);
    }

    /// Determines the interval of a well by vote. On a tie the header's interval wins. It gets one extra vote if
    /// another well has the same interval and most segments fit the header, if a segment continues the one before it to
    /// the tick, or if the segments allow any larger interval.
    CWellInterval Elect(std::int32_t well, const CGroup& group) const {
        const std::int64_t listed = Listed(well);
        const auto goes = [&](const auto* segment) { return TicksOf(*segment).Has(listed); };
        const auto going = static_cast<std::size_t>(listed > 0 ? std::ranges::count_if(group, goes) : 0);
        if (going == group.size()) return {listed, true};
        const CShared best = MostShared(group);
        const bool isShared = m_isTrusted && std::ranges::count(m_listed.wells, listed,
                                                                [](const auto& entry) { return entry.second; }) > 1;
        const auto goesOn = [&](const auto* before, const auto* segment) { return GoesOn(*before, *segment, listed); };
        const bool hasSteps = std::ranges::adjacent_find(group, goesOn) != group.end();
        const std::size_t votes = going + (isShared || hasSteps || best.intervals.IsOpen() ? 1 : 0);
        if (listed > 0 && best.segments <= votes) return {listed, true};
        if (best.intervals.IsOpen()) return {best.intervals.atLeast, false};
        return {std::min(best.intervals.atMost, kMostReadable), true};
    }

    std::int64_t TickOf(std::int32_t well) const {
        const auto found = m_recording.wells.find(well);
        return found != m_recording.wells.end() ? found->second.ticks : m_listed.TickOf(well);
    }

    /// Returns whether a segment fits the interval of a well that has nothing at its times. With `mustAdjoin`, the well
    /// must have samples right before or right after it, too.
    bool Lacks(std::int32_t well, const CFoundSegment& segment, bool mustAdjoin) const {
        const std::int64_t tick = TickOf(well);
        if (tick <= 0 || !TicksOf(segment).Has(tick)) return false;
        const auto found = m_groups.find(well);
        if (found == m_groups.end()) return !mustAdjoin;
        const CGroup& group = found->second;
        const auto next = std::ranges::lower_bound(group, segment.from, {}, &CFoundSegment::from);
        const auto before = next == group.begin() ? next : std::prev(next);
        const auto after = next == group.end() ? next : std::next(next);
        const auto overlaps = [&](const auto* other) { return ShareTimes(*other, segment); };
        const auto adjoins = [&](const auto* other) {
            return GoesOn(segment, *other, tick) || GoesOn(*other, segment, tick);
        };
        return std::none_of(before, after, overlaps) && (!mustAdjoin || std::any_of(before, after, adjoins));
    }

    std::vector<std::int32_t> WellsLacking(const CFoundSegment& segment, bool mustAdjoin) const {
        std::vector<std::int32_t> lacking;
        for (const auto& entry : m_listed.wells) {
            const bool isOther = entry.first != segment.wellID || !segment.namesWell;
            if (isOther && Lacks(entry.first, segment, mustAdjoin)) lacking.push_back(entry.first);
        }
        return lacking;
    }

    /// Returns the segments that provably belong to another well.
    std::vector<CStray> Strays() {
        std::vector<CStray> strays;
        const auto take = [&](CFoundSegment* segment, bool mustAdjoin) {
            const auto lacking = WellsLacking(*segment, mustAdjoin);
            if (lacking.size() == 1) strays.push_back({segment, lacking.front()});
            return lacking.size() == 1;
        };
        for (CFoundSegment* const segment : m_misfits)
            take(segment, true);
        for (CFoundSegment* const segment : m_nameless)
            take(segment, false) || take(segment, true);
        for (const auto& [well, group] : m_groups) {
            // Several segments of an unlisted well are a well of their own.
            if (!m_listed.Lists(well) && group.size() == 1) take(group.front(), true);
            ForTwins(group, [&](CFoundSegment& one, CFoundSegment& other) {
                if (const auto stray = StrayOf(one, other)) strays.push_back(*stray);
            });
        }
        return strays;
    }

    /// Of two overlapping segments with the same well, returns the one that belongs to another well.
    std::optional<CStray> StrayOf(CFoundSegment& one, CFoundSegment& other) const {
        const auto lackOne = WellsLacking(one, true);
        const auto lackOther = WellsLacking(other, true);
        if (lackOne.size() + lackOther.size() == 1)
            return lackOne.empty() ? CStray{&other, lackOther.front()} : CStray{&one, lackOne.front()};
        if (lackOne.size() != 1 || lackOne != lackOther) return std::nullopt;
        const bool isOne = TakeTurns(one, other, lackOne.front());
        if (isOne == TakeTurns(other, one, lackOne.front())) return std::nullopt;
        return CStray{isOne ? &one : &other, lackOne.front()};
    }

    /// Returns whether the two wells take turns in the file if `stray` belongs to the other one. Between the two
    /// segments there must be no segment of these wells, and none of an unlisted well, which could be one of them.
    bool TakeTurns(const CFoundSegment& stray, const CFoundSegment& own, std::int32_t well) const {
        const auto isOfThem = [&](const CFoundSegment& segment) {
            return segment.wellID == well || segment.wellID == own.wellID || !m_listed.Lists(segment.wellID);
        };
        const auto [low, high] = std::minmax({&stray, &own});
        if (std::any_of(low + 1, high, isOfThem)) return false;
        const CFoundSegment* const begin = m_segments.data();
        const CFoundSegment* const end = begin + m_segments.size();
        const auto before = std::find_if(std::make_reverse_iterator(low), std::make_reverse_iterator(begin), isOfThem);
        const CFoundSegment* const next = std::find_if(high + 1, end, isOfThem);
        const auto isOther = [&](const CFoundSegment& neighbour, const CFoundSegment* than) {
            return neighbour.wellID != (than == &stray ? well : own.wellID) && m_listed.Lists(neighbour.wellID);
        };
        return (before == std::make_reverse_iterator(begin) || isOther(*before, low)) &&
               (next == end || isOther(*next, high));
    }

    /// Assigns strays to their wells, unless several would overlap there.
    void Return(std::vector<CStray> strays) {
        std::ranges::sort(strays, [](const CStray& one, const CStray& other) {
            return std::pair(one.well, one.segment->from) < std::pair(other.well, other.segment->from);
        });
        const auto collide = [](const CStray& one, const CStray& other) {
            return one.well == other.well && ShareTimes(*one.segment, *other.segment);
        };
        for (std::size_t i = 0; i < strays.size(); ++i) {
            if (i > 0 && collide(strays[i - 1], strays[i])) continue;
            if (i + 1 < strays.size() && collide(strays[i], strays[i + 1])) continue;
            const auto [segment, well] = strays[i];
            m_found.doubts.Add(RemarkOn(*segment, EReason::OtherWell, well));
            segment->wellID = well;
            segment->namesWell = true;
        }
    }

    /// Reports what can't be decided, once for each well.
    void ReportDoubts() {
        for (const auto& [well, group] : m_groups) {
            if (m_listed.Lists(well) || m_listed.wells.empty()) {
                ReportSharing(group);
            } else {
                m_found.doubts.Add(RemarkOn(*group.front(), EReason::Unlisted, 0, group.size()));
            }
        }
    }

    void ReportSharing(const CGroup& group) {
        std::optional<CRemark> remark;
        std::uint64_t count = 0;
        ForTwins(group, [&](const CFoundSegment& /*one*/, const CFoundSegment& other) {
            const auto lacking = WellsLacking(other, false);
            const bool isBetter = !remark || (remark->value == -1 && !lacking.empty());
            if (isBetter) remark = RemarkOn(other, EReason::SharedTimes, lacking.empty() ? -1 : lacking.front());
            remark->count = ++count;
        });
        if (remark) m_found.doubts.Add(std::move(*remark));
    }

    /// Keeps segments with one damaged time if only one choice of the correct time continues the well's segments before
    /// or after it to the tick.
    void MendMisfits() {
        if (m_misfits.empty()) return;
        for (CFoundSegment* const segment : m_misfits)
            MendTime(*segment);
        Group();
    }

    void MendTime(CFoundSegment& segment) {
        const std::int64_t tick = TickOf(segment.wellID);
        const std::int64_t intervals = std::int64_t{segment.samples} - 1;
        CFoundSegment byFrom = segment;
        CFoundSegment byTo = segment;
        byFrom.to = TimeAfter(segment.from, intervals, tick).value_or(segment.to);
        byTo.from = TimeAfter(segment.to, -intervals, tick).value_or(segment.from);
        const bool isFrom = Lacks(segment.wellID, byFrom, true);
        if (isFrom == Lacks(segment.wellID, byTo, true)) return;
        CRemark remark = RemarkOn(segment, EReason::MadeTime);
        remark.what = isFrom ? "TimeTo" : "TimeFrom";
        m_found.doubts.Add(std::move(remark));
        segment = isFrom ? byFrom : byTo;
    }

    void LoseMisfits() {
        for (CFoundSegment* const segment : m_misfits) {
            m_found.losses.Add(RemarkOn(*segment, EReason::OtherInterval, TickOf(segment->wellID)));
            segment->samples = 0;
        }
        std::erase_if(m_groups, [](const auto& group) { return group.second.empty(); });
        std::erase_if(m_recording.wells, [&](const auto& well) { return !m_groups.contains(well.first); });
    }

    CRemark RemarkOn(const CFoundSegment& segment, EReason reason, std::int64_t value = 0,
                     std::uint64_t count = 0) const {
        return {.reason = reason,
                .from = segment.position,
                .to = segment.End(),
                .recording = m_number,
                .wellID = segment.namesWell ? std::optional(segment.wellID) : std::nullopt,
                .value = value,
                .count = count};
    }

    CFound& m_found;
    CFoundRecording& m_recording;
    const CWellList& m_listed;
    std::uint32_t m_number;
    std::span<CFoundSegment> m_segments;  ///< Sorted as in the new file.
    bool m_isTrusted = true;              ///< Most segments fit the header's intervals.
    std::map<std::int32_t, CGroup> m_groups;
    CGroup m_nameless;  ///< Their IDs are lost, and no well has been found for them yet.
    CGroup m_misfits;   ///< They don't fit the interval of their well.
};

}  // namespace

void SettleWells(CFound& found) {
    const std::span segments(found.segments);
    for (std::size_t begin = 0, end = 0; begin < segments.size(); begin = end) {
        const std::uint32_t recording = segments[begin].recording;
        while (end < segments.size() && segments[end].recording == recording)
            ++end;
        CRecordingWells(found, recording, segments.subspan(begin, end - begin)).Settle();
    }
    std::erase_if(found.segments, [](const CFoundSegment& segment) { return segment.samples == 0; });
}

}  // namespace vxfileio::recovery
