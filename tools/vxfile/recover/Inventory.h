#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vxfile/recover/WholeCells.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfile {

/// What the segments of one well say about its sample interval, which they don't tell themselves.
struct CTickBounds {
    std::uint64_t atLeast = 1;       ///< A smaller interval would make more samples of some segment's times.
    std::uint64_t atMost = kNoMost;  ///< A larger one would make fewer.
    std::uint64_t disagreeing = 0;   ///< Segments that don't go with the recording header's interval.

    static constexpr std::uint64_t kNoMost = INT64_MAX;
};

/// One recording that was found, or of which there is reason to think that it was there.
struct CFoundRecording {
    std::int64_t position = 0;  ///< Where its header stands, or stood.
    std::string bytes;          ///< Its header as it is in the file, in the layout of its version; empty if it is lost.
    std::int32_t version = vxfileio::rawdata::kNewestVersion;
    CDamagedCells damaged;                      ///< Cells of `bytes` that can't be used.
    bool unfinished = false;                    ///< Its writer never told where its data is.
    CRawDataRecordingHdr header;                ///< What is known of it.
    std::map<std::int32_t, CTickBounds> ticks;  ///< By well ID.
};

/// One segment whose header proved itself. There may be millions of them.
struct CFoundSegment {
    std::int64_t position = 0;  ///< Where its header stands.
    std::uint32_t samples = 0;  ///< Those to be kept.
    std::int32_t wellID = 0;
    std::uint32_t recording = 0;  ///< Index of its recording.
    bool disagrees = false;       ///< With the interval that the recording header gives its well.
    bool cut = false;             ///< The file ends within its samples.
};

/// Bytes of the file that are not in the new one.
struct CLoss {
    std::int64_t from = 0;                                  ///< Position in the file.
    std::int64_t to = 0;                                    ///< Where it ends.
    std::optional<std::uint32_t> recording = std::nullopt;  ///< Index of the recording that it most likely belongs to.
    std::optional<std::int32_t> wellID = std::nullopt;      ///< The well, where that can still be read.
    std::string why;
};

/// All that a file holds and that can be relied on, in the order in which the new file will have it.
struct CInventory {
    std::string fileHdr;       ///< The file header as it is, perhaps cut short.
    CDamagedCells fileDamage;  ///< Its cells that can't be used.
    std::vector<CFoundRecording> recordings;
    std::vector<CFoundSegment> segments;  ///< Those of one recording lie together.
    std::vector<CLoss> losses;            ///< The first ones; a file full of rubbish mustn't fill the memory.
    std::uint64_t moreLosses = 0;         ///< Those that aren't told one by one.

    void Lose(CLoss loss) {
        if (losses.size() < kMostLosses) {
            losses.push_back(std::move(loss));
        } else {
            ++moreLosses;
        }
    }

    static constexpr std::size_t kMostLosses = 10'000;
};

}  // namespace vxfile
