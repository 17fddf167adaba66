#include "Segment.h"

bool ReadSegment(CIRawDataReader& reader, CSegment& segment) {
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
    if (!reader.ReadSegment(segment.wellID, segment.timeFrom, segment.timeTo, size, samples)) return false;
    segment.samples = {samples, size};
    return true;
}
