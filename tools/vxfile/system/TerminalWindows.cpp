#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <initializer_list>

#include "tools/vxfile/system/Terminal.h"

namespace vxfile {

bool IsOutputTerminal() { return _isatty(_fileno(stdout)) != 0; }

bool IsErrorTerminal() { return _isatty(_fileno(stderr)) != 0; }

int TerminalWidth() {
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        if (GetConsoleScreenBufferInfo(GetStdHandle(stream), &info) != 0)
            return info.srWindow.Right - info.srWindow.Left + 1;
    }
    return 80;
}

void MakeOutputBinary() { _setmode(_fileno(stdout), _O_BINARY); }

bool EnableColours() {
    constexpr DWORD kVirtualTerminal = 0x0004;  // some headers lack its name
    bool enabled = true;
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
        const HANDLE handle = GetStdHandle(stream);
        DWORD mode = 0;
        if (GetConsoleMode(handle, &mode) == 0) continue;  // a pipe or a file
        enabled = SetConsoleMode(handle, mode | kVirtualTerminal) != 0 && enabled;
    }
    return enabled;
}

}  // namespace vxfile
