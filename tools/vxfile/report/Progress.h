#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace vxfile {

/// A bar on standard error that tells how far a long work is. It appears only on a terminal, and only if the work takes
/// longer than a second; it is gone when the work is done.
class CProgress {
 public:
    /// `total` is the amount of work in any unit, such as the bytes of a file; 0 or less if nobody knows.
    CProgress(std::string_view title, std::int64_t total);
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    /// Tells how much is done by now. Call it often: it looks at the clock only now and then. Throws `CInterruption`
    /// if Ctrl-C was hit, and `std::bad_alloc` if memory has run short.
    void Reach(std::int64_t done);

 private:
    using CClock = std::chrono::steady_clock;

    void Draw(std::int64_t done);

    std::string m_title;
    std::int64_t m_total;
    bool m_enabled;
    bool m_drawn = false;
    std::uint32_t m_calls = 0;
    CClock::time_point m_next = CClock::now() + std::chrono::seconds(1);
};

}  // namespace vxfile
