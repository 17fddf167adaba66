#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "PlatePlan.h"

/// Simulates the instrument: every well sees the same heart, with its own delay, strength and noise. The samples depend
/// only on well, dose and time, so they can be computed again instead of being kept.
class CSignal {
 public:
    /// Loads a recorded signal: unsigned 16-bit samples, low byte first. Throws `std::runtime_error` on failure.
    explicit CSignal(const std::string& path);

    /// Fills `samples` with the signal of a well at this dose (in picomolar), starting at the clock `firstSample`.
    void Measure(const CWell& well, std::int64_t dose, std::int64_t firstSample,
                 std::span<std::uint16_t> samples) const;

 private:
    std::vector<std::int32_t> m_heart;  // in AD steps of the recorded signal, relative to its zero; played in a loop
};
