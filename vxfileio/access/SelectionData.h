#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "vxfileio/access/IndexData.h"
#include "vxfileio/access/SampleSelection.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::access {

/// The selected samples of one segment.
struct CSelectedPiece {
    std::size_t well = 0;  ///< Index in the wells of the selection.
    std::int64_t timeFrom = 0;
    std::int64_t interval = 1;
    std::int64_t offset = 0;  ///< Of the first sample in the file.
    std::uint64_t samples = 0;

    /// Leaves out a number of samples at the beginning. A time beyond 64 bits wraps around.
    void SkipFirst(std::uint64_t count) noexcept {
        samples -= count;
        timeFrom = static_cast<std::int64_t>(static_cast<std::uint64_t>(timeFrom) +
                                             count * static_cast<std::uint64_t>(interval));
        offset += static_cast<std::int64_t>(count) * rawdata::kSampleBytes;
    }
};

/// What a `CSampleSelection` holds. Immutable.
class CSelectionData {
 public:
    /// Throws as `CRecordingIndex::Select` does.
    CSelectionData(std::shared_ptr<const CIndexData> index, const CSampleRequest& request);

    const CIndexData& Index() const { return *m_index; }
    const std::vector<CWellSamples>& Wells() const { return m_wells; }
    std::uint64_t Samples() const { return m_samples; }

    /// Returns the channel of a well of the selection; the default if the recording doesn't have the well.
    CRawDataChannelInfo ChannelOf(const CWellSamples& well) const;

    /// Calls `take(row, piece)` for each segment that has selected samples, in file order.
    template <class Take>
    void ForEachPiece(Take take) const {
        const auto takePiece = [&](const CSegmentRow& row) {
            const CSelectedPiece piece = PieceOf(row);
            if (piece.samples > 0) take(row, piece);
        };
        const auto isWanted = [&](std::uint32_t well) { return m_placeOf[well] != kNotSelected; };
        const CSegmentTable& segments = m_index->segments;
        if (m_wells.size() > 1) return segments.ForEach(m_firstSegment, m_endSegment, isWanted, takePiece);
        const auto only = std::ranges::find_if(m_placeOf, [](std::uint32_t place) { return place != kNotSelected; });
        if (only == m_placeOf.end()) return;
        const auto well = static_cast<std::uint32_t>(only - m_placeOf.begin());
        segments.ForEachOf(well, m_firstSegment, m_endSegment, takePiece);
    }

 private:
    static constexpr std::uint32_t kNotSelected = 0xFFFFFFFF;

    void SelectWell(std::int32_t id);
    CSelectedPiece PieceOf(const CSegmentRow& row) const;
    void Clip(CSelectedPiece& piece) const;
    void Count(const CSegmentRow& row, const CSelectedPiece& piece);

    std::shared_ptr<const CIndexData> m_index;
    std::int64_t m_from;
    std::int64_t m_to;
    std::size_t m_firstSegment;
    std::size_t m_endSegment;
    std::vector<std::uint32_t> m_placeOf;  ///< Index in `m_wells` of each well of the index, or `kNotSelected`.
    std::vector<CWellSamples> m_wells;
    std::uint64_t m_samples = 0;
};

}  // namespace vxfileio::access
