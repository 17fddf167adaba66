#pragma once

#include <chrono>

namespace vxfile {

/// Measures for how long nothing new has come. The time begins anew with everything that is new.
class CIdle {
 public:
    using CTime = std::chrono::steady_clock::time_point;

    /// `most` is the number of seconds after which it is over; never if that is 0.
    CIdle(double most, CTime now) : m_most(most), m_lastNews(now) {}

    /// Takes note of whether there was anything new at this time. Returns true if nothing has come for long enough.
    [[nodiscard]] bool IsOver(bool isNew, CTime now) {
        if (isNew) m_lastNews = now;
        return m_most.count() > 0 && now - m_lastNews >= m_most;
    }

 private:
    std::chrono::duration<double> m_most;
    CTime m_lastNews;
};

}  // namespace vxfile
