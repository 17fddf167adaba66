#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/vxfile/io/Terminal.h"

namespace vxfile {

bool IsOutputTerminal() { return isatty(STDOUT_FILENO) != 0; }

bool IsErrorTerminal() { return isatty(STDERR_FILENO) != 0; }

int TerminalWidth() {
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return known ? size.ws_col : 80;
}

void MakeOutputBinary() {}

bool EnableColours() { return true; }

}  // namespace vxfile
