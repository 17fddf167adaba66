#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfileio::rawdata {

/// The position of a segment, and its well when its header was last read.
struct CSegmentPlace {
    std::int64_t position = kUnset;
    std::int32_t wellID = 0;

    bool operator==(const CSegmentPlace&) const = default;
};
static_assert(sizeof(CSegmentPlace) == 16, "what a segment may cost in memory");

/// The first segments of one recording in the order of their chain, as far as they have been read.
///
/// It only saves reading segments that aren't selected: samples come from the file, even if it has changed. What
/// follows the last place isn't remembered, not even the end of the chain: a writer may have appended.
class CSegmentChain {
 public:
    /// Returns the segment with this number, or null if it isn't remembered. It lives until the next change.
    const CSegmentPlace* Find(std::size_t number) const {
        return number < m_count ? &m_blocks[number / kBlockSize][number % kBlockSize] : nullptr;
    }

    /// Compares the header that was read for the segment with this number. If it contradicts what is remembered of this
    /// segment or its successor, forgets that and everything after it. `next` is the next position in its chain. A
    /// chain that turns back is forgotten completely: it may be a loop, and once the file is repaired, nothing of it
    /// may be left.
    void Confirm(std::size_t number, const CSegmentPlace& place, std::int64_t next) {
        if (!LeadsOn(place, next)) ForgetFrom(0);
        const CSegmentPlace* const remembered = Find(number);
        if (remembered == nullptr) return;
        const CSegmentPlace* const successor = Find(number + 1);
        if (successor != nullptr && successor->position != next) ForgetFrom(number + 1);
        if (*remembered != place) ForgetFrom(number);
    }

    /// Remembers the segment with this number if all before it are remembered, too. `next` is as for `Confirm`.
    void Remember(std::size_t number, const CSegmentPlace& place, std::int64_t next) {
        if (number != m_count || !LeadsOn(place, next)) return;
        if (m_blocks.size() * kBlockSize == m_count) m_blocks.emplace_back().reserve(kBlockSize);
        m_blocks.back().push_back(place);
        ++m_count;
    }

    /// Forgets the segment with this number and all after it.
    void ForgetFrom(std::size_t number) {
        if (number >= m_count) return;
        m_blocks.resize(number / kBlockSize + 1);
        m_blocks.back().resize(number % kBlockSize);
        m_count = number;
    }

 private:
    /// Writers append, so each of their segments points forwards, or nowhere.
    static bool LeadsOn(const CSegmentPlace& place, std::int64_t next) {
        return next == kUnset || next > place.position;
    }

    static constexpr std::size_t kBlockSize = 256;

    std::vector<std::vector<CSegmentPlace>> m_blocks;  ///< All full except the last one, so places are never copied.
    std::size_t m_count = 0;                           ///< The number of places.
};

}  // namespace vxfileio::rawdata
