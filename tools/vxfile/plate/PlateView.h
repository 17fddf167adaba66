#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/vxfile/plate/PlateLabels.h"

namespace vxfile {

/// Returns true if the list has the item, or is empty, which means all.
bool HasOrIsEmpty(const auto& list, const auto& item) {
    return list.empty() || std::ranges::find(list, item) != list.end();
}

/// What a user chose of the recordings of a plate. An empty list means all.
struct CPlateChoice {
    std::vector<std::string> tasks = {};
    std::vector<std::int64_t> doses = {};  ///< In picomolar.
    std::vector<std::int32_t> wells = {};  ///< Their IDs.

    bool HasRecording(const auto& header) const {
        return HasOrIsEmpty(tasks, header.TaskName) && HasOrIsEmpty(doses, header.Dose);
    }
    bool HasWell(std::int32_t well) const { return HasOrIsEmpty(wells, well); }
    bool IsAll() const { return tasks.empty() && doses.empty() && wells.empty(); }
};

/// How a user looks at a recording: which part of it, and in which words and units.
struct CPlateView {
    CPlateChoice choice = {};
    CPlateLabels labels = {};
    double ticksPerSecond = 0;             ///< 0 if nobody said so.
    std::vector<std::string> doubts = {};  ///< A sentence for each doubt about the settings file.

    /// Returns a time in ticks, with seconds if their length is known, such as "300 ticks (0.03 s)".
    std::string TimeText(std::int64_t ticks) const;
    /// Returns "times 0 to 300 ticks", or "times 0 to 300 ticks (0 to 0.03 s)".
    std::string TimesText(std::int64_t from, std::int64_t to) const;
};

/// Returns seconds as the shortest decimal.
std::string SecondsText(std::int64_t ticks, double ticksPerSecond);

}  // namespace vxfile
