#pragma once

#include <cstdint>
#include <vector>

#include "tests/rawdata/SegmentsOf.h"

/// A segment as it is read or written.
struct CSegment {
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::vector<std::uint16_t> samples;

    bool operator==(const CSegment&) const = default;
};

/// Reads the next segment. Returns false at the end of the chain.
inline bool ReadNext(CIRawDataReader& reader, CSegment& segment) {
    auto [well, from, to, size, samples] = CNextSegment();
    if (!reader.ReadSegment(well, from, to, size, samples)) return false;
    segment = {well, from, to, {samples, samples + size}};
    return true;
}
