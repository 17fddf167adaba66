#include "tools/vxfile/io/Interrupt.h"

#include <csignal>

namespace vxfile {

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void NoteInterrupt(int signal) {
    g_interrupted = 1;
    static_cast<void>(std::signal(signal, SIG_DFL));
}

}  // namespace

void CatchInterrupts() {
    static_cast<void>(std::signal(SIGINT, NoteInterrupt));
    static_cast<void>(std::signal(SIGTERM, NoteInterrupt));
#ifdef SIGHUP  // the terminal was closed
    static_cast<void>(std::signal(SIGHUP, NoteInterrupt));
#endif
}

bool IsInterrupted() { return g_interrupted != 0; }

void CheckInterrupt() {
    if (IsInterrupted()) throw CInterruption();
}

}  // namespace vxfile
