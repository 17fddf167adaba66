#include "tools/vxfile/page/Trace.h"

#include <algorithm>

namespace vxfile::page {

namespace {

/// Returns what two neighbouring steps have together.
CTrace::CStep Joined(const CTrace::CStep& a, const CTrace::CStep& b) {
    return {std::min(a.least, b.least), std::max(a.greatest, b.greatest)};
}

/// Compares in locals: compilers then look at many samples at once.
void Widen(CTrace::CStep& step, std::span<const std::uint16_t> samples) {
    std::uint16_t least = step.least;
    std::uint16_t greatest = step.greatest;
    for (const std::uint16_t sample : samples) {
        least = std::min(least, sample);
        greatest = std::max(greatest, sample);
    }
    step = {least, greatest};
}

}  // namespace

CTrace::CTrace(std::size_t mostSteps, std::int64_t expected, CScale scale)
    : m_mostSteps(mostSteps),
      m_scale(scale),
      m_leastStepTime(std::max<std::int64_t>(0, expected) / static_cast<std::int64_t>(mostSteps) + 1) {}

/// Doubles the length of steps until a time after the beginning lies within them.
void CTrace::MakeRoom(std::uint64_t time) {
    while (time / static_cast<std::uint64_t>(m_stepTime) >= m_mostSteps) {
        if (m_stepTime > std::numeric_limits<std::int64_t>::max() / 2) return;
        m_stepTime *= 2;
        for (std::size_t i = 0; i < m_steps.size(); i += 2)
            m_steps[i / 2] = i + 1 < m_steps.size() ? Joined(m_steps[i], m_steps[i + 1]) : m_steps[i];
        m_steps.resize((m_steps.size() + 1) / 2);
    }
}

void CTrace::Add(std::int64_t time, std::int64_t tick, std::span<const std::uint16_t> samples) {
    if (tick < 1 || samples.empty()) return;
    if (m_stepTime == 0) {
        m_begin = time;
        m_stepTime = std::max(tick, m_leastStepTime);
    }
    if (time < m_begin) return;
    const auto every = static_cast<std::uint64_t>(tick);
    std::uint64_t now = static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(m_begin);
    while (!samples.empty()) {
        MakeRoom(now);
        const auto stepTime = static_cast<std::uint64_t>(m_stepTime);
        const std::uint64_t step = now / stepTime;
        if (step >= m_mostSteps) return;
        if (m_steps.size() <= step) m_steps.resize(step + 1);
        const std::uint64_t left = (stepTime - now % stepTime + every - 1) / every;
        const std::size_t count = std::min<std::uint64_t>(left, samples.size());
        Widen(m_steps[step], samples.first(count));
        samples = samples.subspan(count);
        if (count > (std::numeric_limits<std::uint64_t>::max() - now) / every) return;
        now += count * every;
    }
}

}  // namespace vxfile::page
