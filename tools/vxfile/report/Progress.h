#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "verify/Findings.h"
#include "verify/Reach.h"

namespace vxfile {

/// A progress bar on standard error. It appears only on a terminal, and only if the work takes longer than a second. It
/// is erased at the end.
class CProgress {
 public:
    /// `total` is the amount of work in any unit, such as the bytes of a file; 0 or less if unknown.
    explicit CProgress(std::string_view title, std::int64_t total = 0);
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    /// Updates the progress. Call it often: it checks the clock only occasionally. Throws `CInterruption` after Ctrl-C,
    /// and `std::bad_alloc` if memory has run out.
    void Reach(std::int64_t done);

    /// Does the same and notes the amount of work. A `std::ref` to this object is a `CReach`.
    void operator()(std::int64_t done, std::int64_t total) {
        m_total = total;
        Reach(done);
    }

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

/// Returns what `check` finds in a file. `check` gets a `CReach` that shows a bar.
CFindings CheckWithBar(const std::string& path, auto check) {
    CProgress progress("Checking " + path);
    return check(CReach(std::ref(progress)));
}

}  // namespace vxfile
