#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/vxfile/plate/PlateLabels.h"
#include "verify/raw/PlateChoice.h"

namespace vxfile {

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
