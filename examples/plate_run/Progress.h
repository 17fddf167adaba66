#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// Tells on the error stream how far a long piece of work is; short work passes without a word.
class CProgress {
 public:
    /// Begins a piece of work of so many steps.
    CProgress(std::string what, std::int64_t steps);
    /// Removes what was shown.
    ~CProgress();

    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    /// One step is done.
    void Step();

 private:
    using Clock = std::chrono::steady_clock;

    std::string m_what;
    std::int64_t m_steps;
    std::int64_t m_done = 0;
    Clock::time_point m_nextWord;
    bool m_shown = false;
};

/// Adds up the time between `Start` and `Stop`.
class CStopwatch {
 public:
    void Start() { m_start = std::chrono::steady_clock::now(); }
    void Stop() { m_seconds += std::chrono::steady_clock::now() - m_start; }
    double Seconds() const { return m_seconds.count(); }

 private:
    std::chrono::steady_clock::time_point m_start;
    std::chrono::duration<double> m_seconds{};
};
