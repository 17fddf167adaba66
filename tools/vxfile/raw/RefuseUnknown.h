#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "tools/vxfile/plate/PlateView.h"
#include "verify/raw/RawScan.h"

/// @file
/// Refuses tasks, doses and wells that a file doesn't have.

namespace vxfile {

/// Throws `CFailure`, with a list of what there is, if no recording has a chosen task, or none of those tasks has a
/// chosen dose. `path` is the name of the file in the message.
void RefuseUnknownRecordings(const CPlateChoice& choice, const std::string& path,
                             const std::vector<CRecordingAt>& recordings);

/// Does the same, and throws if a chosen well is in none of the chosen recordings.
void RefuseUnknown(const CPlateView& view, const std::string& path, const std::vector<CRecordingAt>& recordings);

/// Does the same with the recordings of a raw data file. If their chain is damaged, the message says so, because what
/// was chosen may follow the damage.
void RefuseUnknown(const CPlateView& view, const std::string& path);

/// Returns the wells of the recordings for whose header `isChosen` returns true.
std::set<std::int32_t> WellsOf(const std::vector<CRecordingAt>& recordings, auto isChosen) {
    std::set<std::int32_t> wells;
    for (const auto& recording : recordings) {
        if (!isChosen(recording.header)) continue;
        for (const auto& channel : recording.header.WellChannels)
            wells.insert(channel.ID);
    }
    return wells;
}

/// Returns at most `kMostListed` numbers and runs, as `ListText` does; "none" if there are none.
std::string ListOrNone(const std::set<std::int32_t>& numbers);

}  // namespace vxfile
