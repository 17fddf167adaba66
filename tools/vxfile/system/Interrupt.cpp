#include "tools/vxfile/system/Interrupt.h"

#include <atomic>
#include <chrono>
#include <csignal>

namespace vxfile {

namespace {

using CHandler = void (*)(int);

constexpr int kSignals[] = {
    SIGINT,
    SIGTERM,
#ifdef SIGHUP  // the terminal was closed
    SIGHUP,
#endif
};

/// Signals within this time are one request: when a terminal, a shell or a service ends a program, it often sends two.
constexpr auto kOneRequest = std::chrono::milliseconds(500);

using CClock = std::chrono::steady_clock;
constexpr CClock::rep kNever = 0;

std::atomic<CClock::rep> g_interrupted = kNever;  ///< The time of the first signal.
static_assert(std::atomic<CClock::rep>::is_always_lock_free, "a signal may arrive at any time");

/// Returns the previous handler. The signal interrupts system calls that wait, such as for the reader of a pipe.
CHandler SetHandler(int signal, CHandler handler) {
#ifdef _WIN32
    return std::signal(signal, handler);
#elif !defined(SA_RESTART)
#error "Interrupt.cpp isn't ported to this system; see \"Adding a platform\" in CONTRIBUTING.md."
#else
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, &before);
    return before.sa_handler;
#endif
}

extern "C" void NoteInterrupt(int signal) {
    const CClock::duration now = CClock::now().time_since_epoch();
    CClock::rep first = kNever;
    const bool isFirst = g_interrupted.compare_exchange_strong(first, now.count());
    const bool isOver = !isFirst && now - CClock::duration(first) > kOneRequest;
    SetHandler(signal, isOver ? SIG_DFL : NoteInterrupt);  // some systems have reset it
    if (isOver) static_cast<void>(std::raise(signal));
}

}  // namespace

void CatchInterrupts() {
#ifdef SIGXFSZ  // a write beyond the size limit fails instead of ending the program
    SetHandler(SIGXFSZ, SIG_IGN);
#endif
    for (const int signal : kSignals) {
        const CHandler before = SetHandler(signal, NoteInterrupt);
        if (before != SIG_DFL) SetHandler(signal, before);  // ignored signals stay ignored
    }
}

bool IsInterrupted() { return g_interrupted != kNever; }

void CheckInterrupt() {
    if (IsInterrupted()) throw CInterruption();
}

}  // namespace vxfile
