#include "tools/vxfile/report/Progress.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

namespace {

/// The clock is checked once in this many calls.
constexpr std::uint32_t kCallsPerLook = 64;

constexpr auto kTimeBetweenBars = std::chrono::milliseconds(100);

}  // namespace

CProgress::CProgress(std::string_view title, std::int64_t total)
    : m_title(Readable(title)), m_total(total), m_enabled(IsErrorTerminal()) {}

CProgress::~CProgress() {
    if (m_drawn) std::cerr << "\r\033[K" << std::flush;
}

void CProgress::Reach(std::int64_t done) {
    CheckInterrupt();
    CheckMemory();
    if (!m_enabled || m_total <= 0 || ++m_calls % kCallsPerLook != 0) return;
    const auto now = CClock::now();
    if (now < m_next) return;
    m_next = now + kTimeBetweenBars;
    Draw(done);
}

void CProgress::Draw(std::int64_t done) {
    if (!m_drawn && !EnableColours()) {  // needs a terminal that can rewrite a line
        m_enabled = false;
        return;
    }
    m_drawn = true;
    const double share = std::clamp(static_cast<double>(done) / static_cast<double>(m_total), 0.0, 1.0);
    const int room = std::clamp(TerminalWidth() - static_cast<int>(m_title.size()) - 10, 10, 60);
    const auto full = static_cast<std::size_t>(share * room);
    const std::string bar = std::string(full, '#') + std::string(static_cast<std::size_t>(room) - full, '.');
    std::cerr << '\r' << m_title << " [" << bar << "] " << static_cast<int>(share * 100) << "%\033[K" << std::flush;
}

}  // namespace vxfile
