#include "tools/vxfile/raw/SegmentJudge.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/report/Text.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// Returns true if the times of a segment give another number of samples than it has. Unknown without an interval.
bool IsContradicted(const CSegmentAt& segment, std::int64_t tick) {
    return tick > 0 && !GoesWith(segment.header, tick);
}

/// Returns true if a header or the end of the file follows the samples.
bool IsEndConfirmed(const CRawScan& scan, const CSegmentAt& segment) {
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    if (next != kUnset) return next == segment.End();
    return segment.End() == scan.Size() || scan.HasHeaderAt(segment.End());
}

/// Calls `act(position)` for each segment that a position leads to, and for the segments of unfinished recordings.
void ForReached(const CRawScan& scan, auto act) {
    CSegmentBudget budget(scan);
    for (const auto& recording : scan.Recordings()) {
        CSegmentWalk walk = AllSegmentsOf(scan, recording);
        for (const CSegmentAt* segment = walk.Next(); segment != nullptr && budget.Take(); segment = walk.Next())
            act(segment->position);
    }
}

}  // namespace

bool CSegmentJudge::Admits(const CSegmentAt& segment, std::int64_t tick, std::size_t recording) {
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    if (next >= segment.position && next < segment.End()) return false;
    if (!IsContradicted(segment, tick)) return true;
    if (!IsEndConfirmed(m_scan, segment)) return false;
    Note(m_times, segment, recording);
    return true;
}

void CSegmentJudge::NoteUnlisted(const CSegmentAt& segment, std::size_t recording) {
    Note(m_unlisted, segment, recording);
}

void CSegmentJudge::NoteNoInterval(const CSegmentAt& segment, std::size_t recording) {
    Note(m_noInterval, segment, recording);
}

/// Writers put the first recording right after the file header.
void CSegmentJudge::NoteStart() {
    const std::int64_t end = m_scan.FileHdrSize();
    if (!m_closed && m_scan.Header().FPosFirstRecordingHdr != end && m_scan.HasHeaderAt(end))
        m_followers.push_back({end, kFileHeader});
}

bool CSegmentJudge::IsShared(const CSegmentAt& segment, std::size_t recording) {
    if (m_zone.recording != recording) Enter(recording);
    const auto& recordings = m_scan.Recordings();
    const bool isInside = segment.position > recordings[recording].position && segment.position < m_zone.end;
    if (isInside || std::exchange(m_zone.isLookedInto, true)) return false;
    return std::ranges::any_of(recordings, [&](const CRecordingAt& other) {
        return &other != &recordings[recording] && LeadsTo(other, segment.position);
    });
}

void CSegmentJudge::Enter(std::size_t recording) {
    if (m_starts.empty()) {
        for (const auto& each : m_scan.Recordings())
            m_starts.push_back(each.position);
        std::ranges::sort(m_starts);
    }
    const auto next = std::ranges::upper_bound(m_starts, m_scan.Recordings()[recording].position);
    m_zone = {recording, next == m_starts.end() ? m_scan.Size() : *next, false};
}

bool CSegmentJudge::LeadsTo(const CRecordingAt& recording, std::int64_t position) {
    if (!recording.IsFinished()) return false;
    CSegmentWalk walk = SegmentsOf(m_scan, recording);
    for (const CSegmentAt* segment = walk.Next(); segment != nullptr && m_budget.Take(); segment = walk.Next()) {
        if (segment->position == position) return true;
    }
    return false;
}

std::string CSegmentJudge::NameOfPlace(std::size_t recording) const {
    return recording == kFileHeader ? "the file header" : NameOf(m_scan.Recordings()[recording], recording);
}

/// The last segment is followed by the next recording or the end of the file.
void CSegmentJudge::NoteEnd(std::int64_t end, std::size_t recording) {
    if (m_closed || end == m_scan.Recordings()[recording].header.FPosNextRecordingHdr || end >= m_scan.Size()) return;
    if (m_scan.HasHeaderAt(end)) m_followers.push_back({end, recording});
}

void CSegmentJudge::Note(CTally& tally, const CSegmentAt& segment, std::size_t recording) const {
    if (m_closed || tally.count++ > 0) return;
    tally.first = "well " + std::to_string(segment.header.ID) + ", at byte " + std::to_string(segment.position) +
                  " in " + NameOf(m_scan.Recordings()[recording], recording);
}

void CSegmentJudge::Clear() {
    m_times = {};
    m_unlisted = {};
    m_noInterval = {};
    m_followers.clear();
    m_closed = false;
}

/// Chains needn't follow the order of the file: the header at the end of one recording may belong to another one, or
/// come earlier in its own chain.
std::vector<CSegmentJudge::CFollower> CSegmentJudge::Unreached() const {
    std::vector<CFollower> followers = m_followers;
    if (followers.empty()) return followers;
    const auto reach = [&](std::int64_t position) {
        auto at = std::ranges::lower_bound(followers, position, {}, &CFollower::position);
        for (; at != followers.end() && at->position == position && !at->isReached; ++at)
            at->isReached = true;
    };
    std::ranges::stable_sort(followers, {}, &CFollower::position);
    for (const auto& recording : m_scan.Recordings())
        reach(recording.position);
    ForReached(m_scan, reach);
    std::erase_if(followers, [](const CFollower& place) { return place.isReached; });
    std::ranges::stable_sort(followers, {}, &CFollower::recording);
    return followers;
}

std::vector<std::string> CSegmentJudge::Doubts() const {
    std::vector<std::string> doubts;
    const auto add = [&](const CTally& tally, const std::string& what) {
        if (tally.count > 0)
            doubts.push_back(Counted(tally.count, "segment") + ' ' + what + "; the first is of " + tally.first + '.');
    };
    add(m_times, "with times that contradict Size, so they are in doubt");
    add(m_unlisted, "of a well that the recording doesn't list, so it may belong to another");
    add(m_noInterval, "of a well without a sample interval, so their times are worked out from TimeFrom and TimeTo");
    const auto unreached = Unreached();
    if (!unreached.empty()) {
        const CFollower& first = unreached.front();
        const std::string more = unreached.size() == 1 ? "" : ", and more at other places";
        doubts.push_back("At byte " + std::to_string(first.position) + ", in or after " + NameOfPlace(first.recording) +
                         ", is a " + (m_scan.HasSegmentAt(first.position) ? "segment" : "recording") +
                         " that no position leads to" + more + "; run 'vxfile recover' to save what is missing here.");
    }
    return doubts;
}

}  // namespace vxfile
