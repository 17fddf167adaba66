#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace vxfileio::access {

/// One segment of a table.
struct CSegmentRow {
    std::uint32_t well = 0;  ///< Index in the wells of the recording.
    std::uint32_t samples = 0;
    std::int64_t timeFrom = 0;
    std::int64_t timeTo = 0;
    std::int64_t offset = 0;  ///< Of the first sample in the file.
};

/// The segments of one recording in the order of their chain, 32 bytes each. The column of wells is in one piece, so
/// that it can be searched quickly for one of them. The others are in blocks, which aren't copied when the table grows.
class CSegmentTable {
 public:
    void Add(const CSegmentRow& row) {
        const std::size_t i = m_wells.size() % kBlockSize;
        if (i == 0) m_blocks.push_back(std::make_unique_for_overwrite<CBlock>());
        m_wells.push_back(row.well);
        CBlock& block = *m_blocks.back();
        block.samples[i] = row.samples;
        block.places[i] = {row.timeFrom, row.timeTo, row.offset};
    }

    std::size_t Count() const noexcept { return m_wells.size(); }

    /// Requires: `number` is below the count.
    CSegmentRow Row(std::size_t number) const noexcept {
        const CBlock& block = *m_blocks[number / kBlockSize];
        const std::size_t i = number % kBlockSize;
        const CPlace& place = block.places[i];
        return {m_wells[number], block.samples[i], place.timeFrom, place.timeTo, place.offset};
    }

    /// Calls `take` for each row in [first, end) whose well `isWanted`, in order.
    template <class Wanted, class Take>
    void ForEach(std::size_t first, std::size_t end, Wanted isWanted, Take take) const {
        for (std::size_t at = first; at < end; ++at)
            if (isWanted(m_wells[at])) take(Row(at));
    }

    /// Calls `take` for each row of one well in [first, end), in order.
    template <class Take>
    void ForEachOf(std::uint32_t well, std::size_t first, std::size_t end, Take take) const {
        const std::uint32_t* const wells = m_wells.data();
        for (const std::uint32_t* at = wells + first; (at = std::find(at, wells + end, well)) != wells + end; ++at)
            take(Row(static_cast<std::size_t>(at - wells)));
    }

 private:
    static constexpr std::size_t kBlockSize = 128;

    struct CPlace {
        std::int64_t timeFrom;
        std::int64_t timeTo;
        std::int64_t offset;
    };

    struct CBlock {
        std::array<std::uint32_t, kBlockSize> samples;
        std::array<CPlace, kBlockSize> places;
    };

    std::vector<std::uint32_t> m_wells;
    std::vector<std::unique_ptr<CBlock>> m_blocks;  ///< All full but the last.
};

}  // namespace vxfileio::access
