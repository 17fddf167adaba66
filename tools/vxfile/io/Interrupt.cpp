#include "tools/vxfile/io/Interrupt.h"

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

volatile std::sig_atomic_t g_interrupted = 0;

/// Returns what stood there before. A system call that waits, for somebody who reads a pipe, say, ends by the signal.
CHandler SetHandler(int signal, CHandler handler) {
#ifdef _WIN32
    return std::signal(signal, handler);
#else
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, &before);
    return before.sa_handler;
#endif
}

/// Leaves alone what has another handler: a signal that is to be ignored stays so.
void ReplaceHandlers(CHandler from, CHandler to) {
    for (const int signal : kSignals) {
        const CHandler before = SetHandler(signal, to);
        if (before != from) SetHandler(signal, before);
    }
}

extern "C" void NoteInterrupt(int /*signal*/) {
    g_interrupted = 1;
    ReplaceHandlers(NoteInterrupt, SIG_DFL);
}

}  // namespace

void CatchInterrupts() { ReplaceHandlers(SIG_DFL, NoteInterrupt); }

bool IsInterrupted() { return g_interrupted != 0; }

void CheckInterrupt() {
    if (IsInterrupted()) throw CInterruption();
}

}  // namespace vxfile
