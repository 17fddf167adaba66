#pragma once

#include <chrono>

namespace vxfile {

/// Measures how long nothing new has arrived. Anything new restarts the time.
class CIdle {
 public:
    using CTime = std::chrono::steady_clock::time_point;

    /// `most` is the number of seconds after which the time is over; 0 means never.
    CIdle(double most, CTime now) : m_most(most), m_lastNews(now) {}

    /// Records whether anything new has arrived. Returns true if nothing has arrived for long enough.
    [[nodiscard]] bool IsOver(bool isNew, CTime now) {
        if (isNew) m_lastNews = now;
        return m_most.count() > 0 && now - m_lastNews >= m_most;
    }

 private:
    std::chrono::duration<double> m_most;
    CTime m_lastNews;
};

}  // namespace vxfile
