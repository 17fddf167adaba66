#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vxfile/recover/WholeCells.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfile {

/// The sample interval of a well that has segments.
struct CWellInterval {
    std::int64_t ticks = 0;
    bool isTold = false;  ///< Its segments leave no other choice.
};

/// One recording that was found, or of which there is reason to think that it was there.
struct CFoundRecording {
    std::int64_t position = 0;  ///< Where its header stands, or stood.
    std::string bytes;          ///< Its header as it is in the file, in the layout of its version; empty if it is lost.
    std::int32_t version = kNewestVersion;
    CDamage cells;                                  ///< Of `bytes`.
    bool unfinished = false;                        ///< Its writer never told where its data is.
    CRawDataRecordingHdr header;                    ///< What is known of it.
    std::map<std::int32_t, CWellInterval> wells{};  ///< Those that have segments, by well ID.
};

/// One segment whose header proved itself. There may be millions of them.
struct CFoundSegment {
    std::int64_t position = 0;  ///< Where its header stands.
    std::int64_t from = 0;      ///< Time of the first sample.
    std::int64_t to = 0;        ///< Time of the last sample.
    std::uint32_t samples = 0;  ///< Those to be kept.
    std::int32_t wellID = 0;
    std::uint32_t recording = 0;  ///< Index of its recording.
    std::int16_t grown = 0;       ///< Bytes that were put into its header; negative if they were taken out.
    bool namesWell = true;        ///< Its ID can be read.

    /// Where the samples begin.
    std::int64_t Data() const { return position + static_cast<std::int64_t>(kSegmentHdrSize) + grown; }
    /// Bytes that a whole header and the samples to be kept take.
    std::int64_t Bytes() const {
        return static_cast<std::int64_t>(kSegmentHdrSize) + static_cast<std::int64_t>(sizeof(std::uint16_t)) * samples;
    }
    std::int64_t End() const { return position + Bytes() + grown; }
};

/// What there is to tell about a part of the file.
struct CRemark {
    std::int64_t from = 0;                                  ///< Position in the file.
    std::int64_t to = 0;                                    ///< Where it ends.
    std::optional<std::uint32_t> recording = std::nullopt;  ///< Index of the recording that it most likely belongs to.
    std::optional<std::int32_t> wellID = std::nullopt;      ///< The well, where that can be read.
    std::string why;
};

/// Remarks of one kind: the first ones, as a file full of rubbish mustn't fill the memory.
struct CRemarks {
    std::vector<CRemark> first;
    std::uint64_t more = 0;  ///< Those that aren't told one by one.

    void Add(CRemark remark) {
        if (first.size() < kMost) {
            first.push_back(std::move(remark));
        } else {
            ++more;
        }
    }
    bool None() const { return first.empty(); }

    static constexpr std::size_t kMost = 10'000;
};

/// All that a file holds and that can be relied on, in the order in which the new file will have it.
struct CInventory {
    std::string fileHdr;  ///< The file header as it is, perhaps cut short.
    CDamage fileCells;    ///< Its cells.
    std::vector<CFoundRecording> recordings;
    std::vector<CFoundSegment> segments;  ///< Those of one recording lie together.
    CRemarks losses;                      ///< Bytes that are not in the new file.
    CRemarks doubts;                      ///< What may be lost, or not be what it was.
};

}  // namespace vxfile
