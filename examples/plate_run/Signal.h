#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "PlatePlan.h"

/// Stands for the instrument: every well sees the same heart, later or earlier, stronger or weaker, with noise of its
/// own. The same well gives the same samples at the same time whenever it is asked, so that nobody has to keep them.
class CSignal {
 public:
    /// Loads a recorded signal: unsigned 16-bit samples, low byte first. Throws `std::runtime_error` if it can't.
    explicit CSignal(const std::string& path);

    /// Fills `samples` with what a well gives at this dose (in picomolar) from the clock `firstSample` on.
    void Measure(const CWell& well, std::int64_t dose, std::int64_t firstSample,
                 std::span<std::uint16_t> samples) const;

 private:
    std::vector<std::int32_t> m_heart;  // in AD steps of the recorded signal around its zero; played over and over
};
