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

/// The tasks, doses and wells that a user chose. An empty list means all.
struct CPlateChoice {
    std::vector<std::string> tasks = {};
    std::vector<std::int64_t> doses = {};  ///< In picomolar.
    std::vector<std::int32_t> wells = {};  ///< Their IDs.

    bool HasRecording(const std::string& task, std::int64_t dose) const {
        return HasOrIsEmpty(tasks, task) && HasOrIsEmpty(doses, dose);
    }
    bool HasRecording(const auto& header) const { return HasRecording(header.TaskName, header.Dose); }
    bool HasWell(std::int32_t well) const { return HasOrIsEmpty(wells, well); }
    bool IsAll() const { return tasks.empty() && doses.empty() && wells.empty(); }
};

/// How a recording is shown: which part of it, with which labels and units.
struct CPlateView {
    CPlateChoice choice = {};
    CPlateLabels labels = {};
    double ticksPerSecond = 0;             ///< 0 if unknown.
    std::vector<std::string> doubts = {};  ///< A sentence for each doubt about the settings file.

    /// Returns a time in ticks, with seconds if their length is known, such as "300 ticks (0.03 s)".
    std::string TimeText(std::int64_t ticks) const;
    /// Returns a range of times in the same form, such as "0 to 300 ticks (0 to 0.03 s)".
    std::string TimesText(std::int64_t from, std::int64_t to) const;
};

/// Returns a time in seconds as the shortest decimal.
std::string SecondsText(std::int64_t ticks, double ticksPerSecond);

}  // namespace vxfile
