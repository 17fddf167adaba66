#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// Shows the progress of a long task on the error stream. Short tasks show nothing.
class CProgress {
 public:
    /// Starts a task of `steps` steps.
    CProgress(std::string what, std::int64_t steps);
    /// Clears the progress line.
    ~CProgress();

    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    /// Counts one finished step.
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
