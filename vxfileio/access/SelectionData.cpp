#include "vxfileio/access/SelectionData.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "vxfileio/access/Missing.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"

namespace vxfileio::access {

using namespace rawdata;

namespace {

/// Returns whether the first sample of a piece comes one interval after the last one of a run.
bool Continues(const CSampleRun& run, const CSelectedPiece& piece) {
    return run.Interval == piece.interval &&
           TimeAfter(run.TimeFrom, static_cast<std::int64_t>(run.Samples), run.Interval) == piece.timeFrom;
}

/// Returns the most samples that a selection of a file of this size may have, see `IsCredible`.
std::uint64_t MostSamples(std::int64_t fileSize) {
    return static_cast<std::uint64_t>((fileSize + std::max(kMostMissingBytes, fileSize)) / kSampleBytes);
}

}  // namespace

CSelectionData::CSelectionData(std::shared_ptr<const CIndexData> index, const CSampleRequest& request)
    : m_index(std::move(index)),
      m_from(request.From),
      m_to(request.To),
      m_firstSegment(std::min(request.FirstSegment, m_index->segments.Count())),
      m_endSegment(m_firstSegment + std::min(request.Segments, m_index->segments.Count() - m_firstSegment)),
      m_placeOf(m_index->wells.size(), kNotSelected) {
    for (const std::int32_t id : request.WellIDs)
        SelectWell(id);
    if (request.WellIDs.empty()) {
        for (const CRawDataChannelInfo& well : m_index->wells)
            SelectWell(well.ID);
    }
    ForEachPiece([&](const CSegmentRow& row, const CSelectedPiece& piece) { Count(row, piece); });
}

CRawDataChannelInfo CSelectionData::ChannelOf(const CWellSamples& well) const {
    const auto found = m_index->rows.find(well.WellID);
    return found == m_index->rows.end() ? CRawDataChannelInfo() : m_index->wells[found->second];
}

void CSelectionData::SelectWell(std::int32_t id) {
    const auto found = m_index->rows.find(id);
    if (found == m_index->rows.end()) {
        const auto isSame = [&](const CWellSamples& well) { return well.WellID == id; };
        if (std::ranges::any_of(m_wells, isSame)) return;
    } else {
        std::uint32_t& place = m_placeOf[found->second];
        if (place != kNotSelected) return;
        place = static_cast<std::uint32_t>(m_wells.size());
    }
    m_wells.push_back({.WellID = id});
}

CSelectedPiece CSelectionData::PieceOf(const CSegmentRow& row) const {
    CSelectedPiece piece{.well = m_placeOf[row.well],
                         .timeFrom = row.timeFrom,
                         .interval = IntervalOf(row.timeFrom, row.timeTo, row.samples, m_index->wells[row.well].Ticks),
                         .offset = row.offset,
                         .samples = row.samples};
    Clip(piece);
    return piece;
}

/// Leaves out what is before and after the selected times.
void CSelectionData::Clip(CSelectedPiece& piece) const {
    const auto interval = static_cast<std::uint64_t>(piece.interval);
    if (m_to < piece.timeFrom) piece.samples = 0;
    if (piece.samples == 0) return;
    // The latest time of all has no end after it, not even for samples whose times are beyond 64 bits.
    if (m_to != std::numeric_limits<std::int64_t>::max())
        piece.samples = std::min(piece.samples - 1, Distance(piece.timeFrom, m_to) / interval) + 1;
    if (m_from <= piece.timeFrom) return;
    const std::uint64_t before = (Distance(piece.timeFrom, m_from) - 1) / interval + 1;
    if (before >= piece.samples) {
        piece.samples = 0;
        return;
    }
    piece.SkipFirst(before);
}

void CSelectionData::Count(const CSegmentRow& row, const CSelectedPiece& piece) {
    const std::int64_t fileSize = m_index->fileSize;
    m_samples += piece.samples;
    if (!IsCredible(row.offset, row.samples, [&] { return fileSize; }) || m_samples > MostSamples(fileSize))
        throw CExcVXReader(kBadSegmentHdr);
    CWellSamples& well = m_wells[piece.well];
    if (well.Runs.empty() || !Continues(well.Runs.back(), piece))
        well.Runs.push_back({.TimeFrom = piece.timeFrom, .Interval = piece.interval, .Offset = well.Samples});
    well.Runs.back().Samples += piece.samples;
    well.Samples += piece.samples;
    well.Missing += MissingSamples(piece.offset, piece.samples, fileSize);
}

}  // namespace vxfileio::access
