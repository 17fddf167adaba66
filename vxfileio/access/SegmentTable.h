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

    /// Calls `take` for each row in [first, end) whose well `isWanted`, in order.
    template <class Wanted, class Take>
    void ForEach(std::size_t first, std::size_t end, Wanted isWanted, Take take) const {
        for (std::size_t at = first; at < end; ++at) {
            const CBlock& block = *m_blocks[at / kBlockSize];
            if (isWanted(block.wells[at % kBlockSize])) take(block.Row(at % kBlockSize));
        }
    }

    /// Calls `take` for each row of one well in [first, end), in order. Compares many wells at once, since the rows of
    /// a plate's well are far apart.
    template <class Take>
    void ForEachOf(std::uint32_t well, std::size_t first, std::size_t end, Take take) const {
        const auto isWanted = [&](std::uint32_t other) { return other == well; };
        for (std::size_t begin = first / kAtOnce * kAtOnce; begin < end; begin += kAtOnce) {
            const std::uint32_t* const wells = &m_blocks[begin / kBlockSize]->wells[begin % kBlockSize];
            std::uint32_t found = 0;
            for (std::size_t i = 0; i < kAtOnce; ++i)
                found |= static_cast<std::uint32_t>(wells[i] == well);
            if (found != 0) ForEach(std::max(first, begin), std::min(end, begin + kAtOnce), isWanted, take);
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
