#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/raw/SegmentJudge.h"
#include "verify/raw/RawScan.h"
#include "vxfileio/access/RawDataFile.h"

namespace vxfile {

/// A choice of samples. An empty list means all.
struct CSampleChoice {
    CPlateChoice plate = {};
    std::vector<std::int32_t> recordings = {};                     ///< Their numbers within the tasks.
    std::int64_t from = std::numeric_limits<std::int64_t>::min();  ///< The first time.
    std::int64_t to = std::numeric_limits<std::int64_t>::max();    ///< The last time.
};

/// Chosen samples of one segment.
struct CPiece {
    const CRawDataRecordingHdr* recording = nullptr;  ///< Valid as long as the file is open.
    const CRawDataChannelInfo* channel = nullptr;     ///< Null if the recording header doesn't name the well.
    std::string_view scaleFault = {};                 ///< A sentence if the header lacks the channel's units.
    std::int32_t well = 0;
    std::int64_t time = 0;                        ///< The time of the first sample.
    std::int64_t tick = 0;                        ///< The time from one sample to the next.
    std::int64_t position = 0;                    ///< The file offset of the first sample.
    std::span<const std::uint16_t> samples = {};  ///< At least one; valid during the call.

    /// Returns the time `count` samples after `from`. After the last sample this may overflow, and wraps around.
    std::int64_t TimeAfter(std::int64_t from, std::uint64_t count) const {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(from) + count * static_cast<std::uint64_t>(tick));
    }
};

/// The chosen samples of a file, in the order of its recordings and of their segments. Can be read more than once.
/// Keeps a block of samples and the index of one recording in memory, and up to 4 MiB of indexes that `Counts` has
/// read. While `Counts` runs within `ForEach`, both have one.
class CSampleSource {
 public:
    using CTakePiece = std::function<void(const CPiece&)>;

    /// Throws `CFailure` if the file can't be opened, the chain of its recordings is broken, or a chosen task, dose or
    /// number doesn't exist.
    CSampleSource(const std::string& path, CSampleChoice choice);

    /// Calls `take` for each piece. Throws `CFailure` if a chain of segments is broken, or if a header would yield
    /// wrong samples; the pieces before it are delivered first.
    void ForEach(const CTakePiece& take);

    /// Returns the number of samples of each well. The first call reads all headers. Call it before `ForEach` if the
    /// counts are needed first.
    const std::map<std::int32_t, std::uint64_t>& Counts();

    /// Throws `CFailure` if there were no samples, for example because no chosen recording is finished; its text says
    /// what the file has instead. Requires: `ForEach` or `Counts` returned.
    void RefuseNothing() const;

    /// Returns the chosen wells without segments in the chosen recordings. Requires: `ForEach` or `Counts` returned.
    std::vector<std::int32_t> MissingWells() const;

    /// Returns the names of the chosen recordings that can't be read because they are unfinished.
    std::vector<std::string> Unfinished() const;

    /// Returns a sentence for each doubt about the samples. Requires: `ForEach` or `Counts` returned.
    std::vector<std::string> Doubts() const { return m_judge.Doubts(); }

    /// Returns the length in bytes of the longest task name of the chosen recordings.
    std::size_t LongestTask() const;

    const std::string& Path() const { return m_path; }
    std::int64_t Size() const { return m_scan.Size(); }

 private:
    /// The sound beginning of a recording.
    struct CSound {
        std::size_t segments = 0;  ///< The number of its segments.
        std::string damage;        ///< What can't be read after them; empty for nothing.
    };

    struct CRead {
        CRecordingIndex index;
        CSound sound;
    };

    using CTakeSelection = std::function<void(std::size_t, const CRead&, const CSampleSelection&)>;

    void RefuseUnknownNumbers() const;
    [[noreturn]] void RefuseWells() const;
    void Walk(const CTakeSelection& take);
    void WalkRecording(std::size_t recording, const CTakeSelection& take);
    void Read(const std::string& where, const std::function<void()>& read) const;
    bool IsChosen(const CRawDataRecordingHdr& header) const;
    CRead ReadRecording(std::size_t recording);
    void Keep(std::size_t recording, const CRead& read);
    CSound Judge(const CRecordingIndex& index, std::size_t recording);
    std::string DamageOf(const CSegmentAt& segment, const CRawDataChannelInfo* channel, std::size_t recording);
    [[noreturn]] void RefuseBreak(const std::string& where) const;

    std::string m_path;
    CRawScan m_scan;
    CSegmentJudge m_judge{m_scan};
    CSampleChoice m_choice;
    std::optional<CRawDataFile> m_file;  ///< Empty if there are no recordings.
    std::map<std::int32_t, std::uint64_t> m_counts;
    std::map<std::size_t, CRead> m_kept;  ///< Recordings that `Counts` has read and `ForEach` needn't read again.
    std::size_t m_keptMemory = 0;         ///< In bytes.
    std::set<std::int32_t> m_wells;       ///< The chosen wells that have segments.
    std::int64_t m_first =
        std::numeric_limits<std::int64_t>::max();  ///< The range of times of their segments before clipping.
    std::int64_t m_last = std::numeric_limits<std::int64_t>::min();
    bool m_any = false;  ///< There are samples.
};

}  // namespace vxfile
