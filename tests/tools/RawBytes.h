#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/rawdata/RawFileBytes.h"

/// @file
/// Builds raw data files of several recordings by hand, as a writer would write them.

/// Returns a file with these recordings, CompoundTest 1 and so on. If `isFinished` is false, the last one has no
/// positions yet.
inline std::string FileOf(const std::vector<CSegmentTexts>& recordings, bool isFinished = true) {
    std::string bytes = FileHdrBytes(recordings.empty() ? -1 : 1190);
    for (std::size_t i = 0; i < recordings.size(); ++i) {
        const auto data = static_cast<std::int64_t>(bytes.size()) + 2460;
        const bool isLast = i + 1 == recordings.size();
        const std::string segments = ChainBytes(recordings[i], data);
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
