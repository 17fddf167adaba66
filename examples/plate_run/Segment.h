#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <span>

/// A segment returned by `ReadSegment`. The reader owns the samples; they are valid until the next segment is read.
struct CSegment {
    std::int32_t wellID;
    std::int64_t timeFrom;
    std::int64_t timeTo;
    std::span<const std::uint16_t> samples;
};

/// Reads the next segment of a recording. Returns false at the end of the recording.
bool ReadSegment(CIRawDataReader& reader, CSegment& segment);
