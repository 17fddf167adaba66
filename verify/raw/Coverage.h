#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace vxfile {

/// The range [begin, end) of a file.
struct CRange {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// The bytes of a file that belong to a header or a segment. Merges adjacent ranges that are added in order, so a large
/// file that was written in order takes no more memory than a small one.
class CCoverage {
 public:
    void Add(CRange range) {
        if (range.begin >= range.end) return;
        if (!m_ranges.empty() && m_ranges.back().end == range.begin) {
            m_ranges.back().end = range.end;
        } else {
            m_ranges.push_back(range);
        }
    }

    /// Calls `gap(range)` for each uncovered range of the first `size` bytes, and `overlap(range)` for each range that
    /// is covered again, both in the order of the file.
    void Inspect(std::int64_t size, auto gap, auto overlap) {
        std::ranges::sort(m_ranges, {}, &CRange::begin);
        std::int64_t reached = 0;
        for (const CRange range : m_ranges) {
            if (range.begin > reached) gap(CRange{reached, std::min(range.begin, size)});
            if (range.begin < reached) overlap(CRange{range.begin, std::min(range.end, reached)});
            reached = std::max(reached, range.end);
        }
        if (reached < size) gap(CRange{reached, size});
    }

 private:
    std::vector<CRange> m_ranges;
};

}  // namespace vxfile
