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

/// The segments of one recording in the order of their chain, 32 bytes each. Blocks of columns: no segment is copied
/// when the table grows, and looking for the segments of one well reads only 4 bytes of the others.
class CSegmentTable {
 public:
    void Add(const CSegmentRow& row) {
        const std::size_t i = m_count % kBlockSize;
        if (i == 0) m_blocks.push_back(std::make_unique<CBlock>());
        CBlock& block = *m_blocks.back();
        block.wells[i] = row.well;
        block.samples[i] = row.samples;
        block.timesFrom[i] = row.timeFrom;
        block.timesTo[i] = row.timeTo;
        block.offsets[i] = row.offset;
        ++m_count;
    }

    std::size_t Count() const noexcept { return m_count; }

    /// Requires: `number` is below the count.
    CSegmentRow Row(std::size_t number) const noexcept {
        return m_blocks[number / kBlockSize]->Row(number % kBlockSize);
    }

    /// Calls `take` for each row whose well `isWanted`, in order.
    template <class Wanted, class Take>
    void ForEach(Wanted isWanted, Take take) const {
        for (std::size_t begin = 0; begin < m_count; begin += kBlockSize) {
            const CBlock& block = *m_blocks[begin / kBlockSize];
            const std::size_t size = std::min(kBlockSize, m_count - begin);
            for (std::size_t i = 0; i < size; ++i) {
                if (isWanted(block.wells[i])) take(block.Row(i));
            }
        }
    }

    /// Calls `take` for each row of one well, in order. Compares many wells at once, since the rows of a plate's well
    /// are far apart.
    template <class Take>
    void ForEachOf(std::uint32_t well, Take take) const {
        for (std::size_t begin = 0; begin < m_count; begin += kAtOnce) {
            const CBlock& block = *m_blocks[begin / kBlockSize];
            const std::size_t first = begin % kBlockSize;
            std::uint32_t found = 0;
            for (std::size_t i = first; i < first + kAtOnce; ++i)
                found |= static_cast<std::uint32_t>(block.wells[i] == well);
            if (found == 0) continue;
            const std::size_t end = std::min(first + kAtOnce, first + m_count - begin);
            for (std::size_t i = first; i < end; ++i) {
                if (block.wells[i] == well) take(block.Row(i));
            }
        }
    }

 private:
    static constexpr std::size_t kBlockSize = 128;
    static constexpr std::size_t kAtOnce = 16;
    static_assert(kBlockSize % kAtOnce == 0);

    struct CBlock {
        std::array<std::uint32_t, kBlockSize> wells;
        std::array<std::uint32_t, kBlockSize> samples;
        std::array<std::int64_t, kBlockSize> timesFrom;
        std::array<std::int64_t, kBlockSize> timesTo;
        std::array<std::int64_t, kBlockSize> offsets;

        CSegmentRow Row(std::size_t i) const noexcept {
            return {wells[i], samples[i], timesFrom[i], timesTo[i], offsets[i]};
        }
    };

    std::vector<std::unique_ptr<CBlock>> m_blocks;  ///< All full but the last.
    std::size_t m_count = 0;
};

}  // namespace vxfileio::access
