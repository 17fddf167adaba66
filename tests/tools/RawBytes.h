#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/rawdata/RawFileBytes.h"

/// @file
/// Builds raw data files of several recordings by hand, as a writer would write them.

/// One segment; the interval of all wells is 100.
struct CSegmentText {
    int well = 11;
    std::int64_t from = 0;
    std::vector<std::uint16_t> samples;
    std::int64_t tick = 100;
};

/// The segments of one recording.
using CSegmentTexts = std::vector<CSegmentText>;

/// Returns a file with these recordings, CompoundTest 1 and so on. If `isFinished` is false, the last one has no
/// positions yet.
inline std::string FileOf(const std::vector<CSegmentTexts>& recordings, bool isFinished = true) {
    std::string bytes = FileHdrBytes(recordings.empty() ? -1 : 1190);
    for (std::size_t i = 0; i < recordings.size(); ++i) {
        const auto data = static_cast<std::int64_t>(bytes.size()) + 2460;
        const bool isLast = i + 1 == recordings.size();
        std::string segments;
        for (const auto& segment : recordings[i]) {
            const auto end = data + static_cast<std::int64_t>(segments.size() + 300 + 2 * segment.samples.size());
            const auto count = static_cast<std::int64_t>(segment.samples.size());
            segments += SegmentHdrBytes(segment.well, &segment == &recordings[i].back() ? -1 : end, segment.from,
                                        segment.from + segment.tick * (count - 1), std::to_string(count)) +
                        SampleBytes(segment.samples);
        }
        const auto end = data + static_cast<std::int64_t>(segments.size());
        const bool hasPositions = !isLast || isFinished;
        bytes +=
            RecordingHdrBytes(
                {.recording = static_cast<int>(i) + 1, .data = hasPositions ? data : -1, .next = isLast ? -1 : end}) +
            segments;
    }
    return bytes;
}

/// Replaces the value of the first cell with this key at or after `from`. The width of the cell stays the same.
inline std::string WithCell(std::string bytes, const std::string& key, const std::string& value, std::size_t from = 0) {
    const std::size_t at = bytes.find(key + "=", from);
    const std::size_t width = bytes.find("\r\n", at) - at;
    std::string text = key + "=" + value;
    text.resize(width, '\0');
    return bytes.replace(at, width, text);
}
