#include "tools/vxfile/raw/RawParts.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Interrupt.h"

namespace vxfile {

using EKind = CSealedPart::EKind;

CRawParts::CRawParts(const CRawScan& scan) : m_scan(scan) {
    AddPlace({.offset = 0, .length = scan.FileHdrSize(), .kind = EKind::FileHeader});
    CSegmentBudget budget(scan);
    for (std::uint32_t index = 0; index < scan.Recordings().size(); ++index)
        AddRecording(index, budget);
    if (scan.Break()) m_doubts.emplace_back("the chain of recordings breaks off");
    std::ranges::stable_sort(m_places, {}, &CPlace::offset);
    AddGaps();
}

void CRawParts::ForEach(const std::function<void(CSealedPart&)>& take) const {
    for (const CPlace& place : m_places) {
        CSealedPart part = PartAt(place);
        take(part);
    }
}

/// Adds a header or segment, which may be cut by the end of the file.
void CRawParts::AddPlace(CPlace place) {
    place.length = std::min(place.length, m_scan.Size() - place.offset);
    if (place.length > 0) m_places.push_back(place);
}

void CRawParts::AddRecording(std::uint32_t index, CSegmentBudget& budget) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    AddPlace({.offset = recording.position,
              .length = m_scan.RecordingHdrSize(),
              .recording = index,
              .kind = EKind::RecordingHeader});
    CSegmentWalk walk = AllSegmentsOf(m_scan, recording);
    for (const CSegmentAt* segment = walk.Next(); segment != nullptr && budget.Take(); segment = walk.Next()) {
        CheckInterrupt();
        AddPlace({segment->position, segment->End() - segment->position, segment->header.TimeFrom,
                  segment->header.TimeTo, segment->header.ID, index, EKind::Segment});
        ++m_segments;
    }
    if (!recording.IsFinished()) m_doubts.push_back(NameOf(recording, index) + " is unfinished");
    if (walk.Break()) m_doubts.push_back("the chain of segments of " + NameOf(recording, index) + " breaks off");
}

/// Removes parts that overlap an earlier one, and adds the uncovered ranges.
void CRawParts::AddGaps() {
    std::vector<CPlace> all;
    std::int64_t reached = 0;
    std::int64_t gaps = 0;
    const auto reach = [&](std::int64_t offset) {
        if (offset <= reached) return;
        gaps += offset - reached;
        all.push_back({.offset = reached, .length = offset - reached});
    };
    for (const CPlace& place : m_places) {
        if (place.offset < reached) continue;
        reach(place.offset);
        all.push_back(place);
        reached = place.offset + place.length;
    }
    reach(m_scan.Size());
    if (gaps > 0)
        m_doubts.push_back(Counted(static_cast<std::uint64_t>(gaps), "byte") + " outside all headers and segments");
    m_places = std::move(all);
}

CSealedPart CRawParts::PartAt(const CPlace& place) const {
    CSealedPart part;
    part.kind = place.kind;
    part.offset = place.offset;
    part.length = place.length;
    if (place.kind != EKind::RecordingHeader && place.kind != EKind::Segment) return part;
    const CRawDataRecordingHdr& header = m_scan.Recordings()[place.recording].header;
    part.task = Readable(header.TaskName);
    part.recording = header.Recording;
    if (place.kind != EKind::Segment) return part;
    part.headerLength = std::min(m_scan.SegmentHdrSize(), place.length);
    part.well = place.well;
    part.from = place.from;
    part.to = place.to;
    return part;
}

}  // namespace vxfile
