// play_files write|read KIND FOLDER: writes or reads one file of a kind in a folder.
//
// Writing prints the result of GetWriteError, and exits with 0 if it is empty, with 1 if not, and with 2 if the file
// couldn't be opened. Reading prints the content, or prints the failure and exits with 2.

#include <csignal>
#include <iostream>
#include <string>

#include "tests/faults/Plays.h"

namespace {

int Write(const CKind& kind, const std::string& path) {
    CVXFileIO io;
    try {
        for (const auto& step : kind.steps(io, path))
            step();
    } catch (const CExcVXReader& failure) {
        std::cout << failure.GetMsg() << " / " << kind.writeError(io) << '\n';
        return 2;
    }
    std::cout << kind.writeError(io) << '\n';
    return kind.writeError(io).empty() ? 0 : 1;
}

int Read(const CKind& kind, const std::string& path) {
    CVXFileIO io;
    try {
        std::cout << kind.read(io, path) << '\n';
    } catch (const CExcVXReader& failure) {
        std::cout << failure.GetMsg() << '\n';
        return 2;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
#if defined(SIGXFSZ)
    std::signal(SIGXFSZ, SIG_IGN);  // exceeding a file size limit is an error, not the end of the process
#endif
    for (const CKind& kind : AllKinds()) {
        if (argc != 4 || argv[2] != std::string(kind.name)) continue;
        const std::string path = argv[3] + ("/" + std::string(kind.file));
        if (argv[1] == std::string("write")) return Write(kind, path);
        if (kind.read != nullptr) return Read(kind, path);
    }
    std::cerr << "usage: play_files write|read KIND FOLDER\n";
    return 3;
}
