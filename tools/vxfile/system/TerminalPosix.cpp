#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

bool IsOutputTerminal() { return isatty(STDOUT_FILENO) != 0; }

bool IsErrorTerminal() { return isatty(STDERR_FILENO) != 0; }

int TerminalWidth() {
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        winsize size{};
        if (ioctl(stream, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
    }
    return 80;
}

void MakeOutputBinary() {}

bool EnableColours() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

}  // namespace vxfile
