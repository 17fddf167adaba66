#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "PlatePlan.h"

/// Simulates the instrument: every well sees the same heart, with its own delay, strength and noise. The compound
/// weakens the signal and delays the end of each beat, as a compound that prolongs the QT interval does. The samples
/// depend only on well, dose and time, so they can be computed again instead of being kept.
class CSignal {
 public:
    /// Loads a recorded signal: unsigned 16-bit samples, low byte first. Throws `std::runtime_error` on failure.
    explicit CSignal(const std::string& path);

    /// Fills `samples` with the signal of a well at this dose (in picomolar), starting at the clock `firstSample`.
    void Measure(const CWell& well, std::int64_t dose, std::int64_t firstSample,
                 std::span<std::uint16_t> samples) const;

 private:
    /// Returns the recorded signal at a time after a beat, given in 1/1000 of a sample, in 1/1000 of a recorded step.
    std::int64_t Recorded(std::int64_t beat, std::int64_t time) const;

    std::vector<std::int32_t> m_heart;  // in AD steps of the recorded signal, relative to its zero; played in a loop
    std::vector<std::int32_t> m_beats;  // where its beats are, between 0 and its size
};
