#include "tools/vxfile/recover/Evidence.h"

#include <algorithm>

#include "tools/vxfile/recover/HeaderProbe.h"

namespace vxfile {

using vxfileio::rawdata::CSegmentHdr;

std::optional<std::int64_t> CEvidence::PromisedBehind(std::int64_t from) const {
    const auto promised = m_recordings.lower_bound(from);
    return promised == m_recordings.end() ? std::nullopt : std::optional(*promised);
}

void CEvidence::BeginRecording(const CRawDataRecordingHdr& header, bool knowsWells) {
    m_ticks.clear();
    for (const auto& well : header.WellChannels)
        m_ticks.try_emplace(well.ID, well.Ticks);
    m_knowsWells = knowsWells && !m_ticks.empty();
    m_next.reset();
    m_seen.clear();
}

void CEvidence::Tally(const CSegmentHdr& header) {
    const auto span = static_cast<std::int64_t>(SpanOf(header).value_or(0));
    CSeenWell& seen = m_seen.try_emplace(header.ID, CSeenWell{.to = header.TimeTo}).first->second;
    seen.atLeast = std::max(seen.atLeast, span / header.Size + 1);
    if (header.Size > 1) seen.atMost = std::min(seen.atMost, span / (header.Size - 1));
    seen.to = std::max(seen.to, header.TimeTo);
}

std::int64_t CEvidence::TickOf(std::int32_t wellID) const {
    const auto listed = m_ticks.find(wellID);
    if (listed != m_ticks.end() && listed->second > 0) return listed->second;
    const auto seen = m_seen.find(wellID);
    if (seen == m_seen.end() || seen->second.atLeast > seen->second.atMost) return 0;
    return seen->second.atMost < kNoMost ? seen->second.atMost : 0;
}

bool CEvidence::Belongs(const CSegmentHdr& header) const {
    if (m_knowsWells && !m_ticks.contains(header.ID)) return false;
    const std::int64_t tick = TickOf(header.ID);
    if (tick > 0 && !GoesWith(header, tick)) return false;
    const auto seen = m_seen.find(header.ID);
    return seen == m_seen.end() || header.TimeFrom > seen->second.to;
}

}  // namespace vxfile
