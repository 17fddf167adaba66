#include "Progress.h"

#include <iostream>
#include <utility>

namespace {

constexpr std::chrono::seconds kPause{1};

}  // namespace

CProgress::CProgress(std::string what, std::int64_t steps)
    : m_what(std::move(what)), m_steps(steps), m_nextWord(Clock::now() + kPause) {}

CProgress::~CProgress() {
    if (m_shown) std::cerr << '\r' << std::string(m_what.size() + 6, ' ') << '\r' << std::flush;
}

void CProgress::Step() {
    ++m_done;
    const auto now = Clock::now();
    if (now < m_nextWord) return;
    std::cerr << '\r' << m_what << ' ' << 100 * m_done / m_steps << " %" << std::flush;
    m_nextWord = now + kPause;
    m_shown = true;
}
