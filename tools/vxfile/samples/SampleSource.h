#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/raw/RawScan.h"

namespace vxfile {

/// Which samples are wanted. An empty list means all.
struct CSampleChoice {
    std::vector<std::string> tasks;
    std::vector<std::int32_t> recordings;  ///< Numbers within their tasks.
    std::vector<std::int32_t> wells;
    std::int64_t from = std::numeric_limits<std::int64_t>::min();  ///< The first time.
    std::int64_t to = std::numeric_limits<std::int64_t>::max();    ///< The last time.
};

/// The chosen samples of one segment.
struct CPiece {
    const CRawDataRecordingHdr* recording = nullptr;  ///< Valid as long as the file is open.
    std::size_t recordingIndex = 0;                   ///< In the order of the file, from 0.
    const CRawDataChannelInfo* channel = nullptr;     ///< Null if the recording header doesn't name the well.
    std::int32_t well = 0;
    std::int64_t time = 0;      ///< Of the first sample.
    std::int64_t tick = 0;      ///< From one sample to the next.
    std::uint64_t count = 0;    ///< Samples.
    std::int64_t position = 0;  ///< Where the first one stands in the file.

    /// Returns the time of the sample that comes so many behind the one of `from`. Times of a damaged file may go
    /// round.
    std::int64_t TimeBehind(std::int64_t from, std::uint64_t samples) const {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(from) + samples * static_cast<std::uint64_t>(tick));
    }
};

/// The samples of a file, in the order of its recordings and of the segments in them. Only headers are read here, so
/// that it can be gone through once to count, and once more to read.
class CSampleSource {
 public:
    /// Throws `CFailure` if the file can't be opened or its recordings can't be followed to the last.
    CSampleSource(const std::string& path, CSampleChoice choice);

    /// Calls `take` for each piece. Throws `CFailure` where a chain of segments breaks: what is broken is saved first,
    /// not passed on by halves.
    void ForEach(const std::function<void(const CPiece&)>& take) const;

    /// Reads the samples of a piece and calls `take` for one block of them after the other. Memory is a block.
    void Read(const CPiece& piece, const std::function<void(std::span<const std::uint16_t>)>& take);

    /// The names of chosen recordings that can't be read, since their writer never finished them.
    std::vector<std::string> Unfinished() const;

    std::int64_t Size() const { return m_scan.Size(); }

 private:
    bool IsChosen(const CRawDataRecordingHdr& header) const;
    CPiece PieceOf(const CSegmentAt& segment, const CRecordingAt& recording) const;
    void Clip(CPiece& piece) const;
    [[noreturn]] void RefuseBreak(const std::string& where) const;

    std::string m_path;
    CRawScan m_scan;
    CSampleChoice m_choice;
    std::vector<std::uint16_t> m_block;
};

}  // namespace vxfile
