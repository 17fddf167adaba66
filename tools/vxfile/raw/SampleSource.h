#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/raw/RawScan.h"
#include "tools/vxfile/raw/SegmentJudge.h"

namespace vxfile {

/// Which samples are wanted. An empty list means all.
struct CSampleChoice {
    std::vector<std::string> tasks = {};
    std::vector<std::int32_t> recordings = {};  ///< Numbers within their tasks.
    std::vector<std::int32_t> wells = {};
    std::int64_t from = std::numeric_limits<std::int64_t>::min();  ///< The first time.
    std::int64_t to = std::numeric_limits<std::int64_t>::max();    ///< The last time.
};

/// The chosen samples of one segment.
struct CPiece {
    const CRawDataRecordingHdr* recording = nullptr;  ///< Valid as long as the file is open.
    const CRawDataChannelInfo* channel = nullptr;     ///< Null if the recording header doesn't name the well.
    bool hasScale = true;                             ///< The header tells how samples of the channel turn into units.
    std::int32_t well = 0;
    std::int64_t time = 0;      ///< Of the first sample.
    std::int64_t tick = 0;      ///< From one sample to the next.
    std::uint64_t count = 0;    ///< Samples.
    std::int64_t position = 0;  ///< Where the first one stands in the file.

    /// Returns the time of the sample that comes so many behind the one of `from`. The one behind the last may be none.
    std::int64_t TimeBehind(std::int64_t from, std::uint64_t samples) const {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(from) + samples * static_cast<std::uint64_t>(tick));
    }
};

/// The samples of a file, in the order of its recordings and of the segments in them. It may be gone through more than
/// once. Memory is a window on the file, and the places of some segments.
class CSampleSource {
 public:
    using CTakePiece = std::function<void(const CPiece&)>;

    /// Throws `CFailure` if the file can't be opened, its recordings can't be followed to the last, none of them has
    /// a task or a number of the choice, or none of those chosen was finished.
    CSampleSource(const std::string& path, CSampleChoice choice);

    /// Calls `take` for each piece. Throws `CFailure` where a chain of segments breaks, or a header would give wrong
    /// samples: what is broken is saved first, not passed on by halves.
    void ForEach(const CTakePiece& take);

    /// Reads the samples of a piece and calls `take` for one part of them after the other.
    void Read(const CPiece& piece, const std::function<void(std::span<const std::uint16_t>)>& take);

    /// Returns how many samples each well has. The first call goes through all headers; who needs it before the samples
    /// shall call it before.
    const std::map<std::int32_t, std::uint64_t>& Counts();

    /// To be called when all was gone through. Throws `CFailure` if there are no samples; the sentence says what the
    /// file has instead.
    void RefuseNothing() const;

    /// The wells of the choice that have no segment in the recordings chosen; asked when all was gone through.
    std::vector<std::int32_t> MissingWells() const;

    /// The names of chosen recordings that can't be read, since their writer never finished them.
    std::vector<std::string> Unfinished() const;

    /// What isn't certain of the samples, or is missing, a sentence each; asked when all was gone through.
    std::vector<std::string> Doubts() const { return m_judge.Doubts(); }

    /// The bytes of the longest name that a chosen recording's task has.
    std::size_t LongestTask() const;

    const std::string& Path() const { return m_path; }
    std::int64_t Size() const { return m_scan.Size(); }

 private:
    /// Where to go on.
    struct CPlace {
        std::size_t recording = 0;
        std::optional<std::int64_t> segment;  ///< Nothing stands for the first one.
    };

    void RefuseUnknownTasks() const;
    void RefuseUnknownRecordings() const;
    void RefuseUnfinished() const;
    [[noreturn]] void RefuseWells() const;
    void Walk(CPlace from, EWalk reads, const std::function<void(const CPiece&, CPlace)>& take);
    bool IsChosen(const CRawDataRecordingHdr& header) const;
    void WalkRecording(std::size_t index, CSegmentWalk walk, const std::function<void(const CPiece&, CPlace)>& take);
    void RefuseWrong(const CSegmentAt& segment, const CRawDataChannelInfo* channel, std::size_t recording);
    CPiece Chosen(const CSegmentAt& segment, const CRawDataRecordingHdr& recording, const CRawDataChannelInfo* channel);
    void Clip(CPiece& piece) const;
    [[noreturn]] void RefuseBreak(const std::string& where) const;

    std::string m_path;
    CRawScan m_scan;
    CSegmentJudge m_judge{m_scan};
    CSampleChoice m_choice;
    EWalk m_reads;
    std::map<std::int32_t, std::uint64_t> m_counts;
    std::vector<CPiece> m_kept;  ///< The first ones, which needn't be looked for once more.
    CPlace m_behindKept;
    std::set<std::int32_t> m_wells;                                   ///< Those of the choice that have segments.
    std::int64_t m_first = std::numeric_limits<std::int64_t>::max();  ///< The times of their segments, clipped or not.
    std::int64_t m_last = std::numeric_limits<std::int64_t>::min();
    bool m_any = false;  ///< There are samples.
};

}  // namespace vxfile
