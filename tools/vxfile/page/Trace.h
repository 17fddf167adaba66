#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace vxfile::page {

/// The samples of one well in one recording, reduced to the least and the greatest of each step in time, so that no
/// peak is lost. Steps without samples are gaps. Steps become longer as samples arrive, so memory is bounded for
/// any times.
class CTrace {
 public:
    /// The least and greatest sample of a step; least above greatest in a gap.
    struct CStep {
        std::uint16_t least = std::numeric_limits<std::uint16_t>::max();
        std::uint16_t greatest = 0;

        bool IsGap() const { return least > greatest; }
    };

    /// How samples are converted to units: a sample of `zero` is 0.
    struct CScale {
        double unitsPerAD = 0.0;  ///< 0 or NaN if unknown.
        std::int32_t zero = 0;
    };

    /// Makes a trace without samples.
    CTrace() = default;
    /// Makes a trace without samples that has at most `mostSteps` steps, at least 4. They are as short as a recording
    /// of `expected` ticks allows.
    CTrace(std::size_t mostSteps, std::int64_t expected, CScale scale);

    /// Adds samples, the first at time `time` and then one each `tick`. Ignores those before the first sample of all,
    /// and a segment whose tick is below 1.
    void Add(std::int64_t time, std::int64_t tick, std::span<const std::uint16_t> samples);

    std::int64_t Begin() const { return m_begin; }        ///< The time of the first step.
    std::int64_t StepTime() const { return m_stepTime; }  ///< From one step to the next, in ticks.
    const std::vector<CStep>& Steps() const { return m_steps; }
    const CScale& Scale() const { return m_scale; }

 private:
    void MakeRoom(std::uint64_t time);

    std::size_t m_mostSteps = 4;
    CScale m_scale;
    std::int64_t m_begin = 0;
    std::int64_t m_leastStepTime = 1;
    std::int64_t m_stepTime = 0;  ///< 0 before the first sample.
    std::vector<CStep> m_steps;
};

}  // namespace vxfile::page
