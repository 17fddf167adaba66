#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

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

}  // namespace vxfile
