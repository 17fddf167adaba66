#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "tools/vxfile/shell/Program.h"

namespace {

using CWords = std::vector<const char*>;

int Run(CWords words) {
    words.insert(words.begin(), "vxfile");
    return vxfile::RunProgram(static_cast<int>(words.size()), words.data());
}

/// Discards what the commands print. The fuzzer doesn't print through this stream.
void PrintNowhere() {
    static const bool isDone = std::freopen("/dev/null", "w", stdout) != nullptr;
    Require(isDone, "there is /dev/null");
    std::cerr.rdbuf(nullptr);
}

}  // namespace

/// Runs the reading commands on any bytes. Each command must exit with a documented status. A file must be equal to
/// itself or not comparable. If verify finds a file sound, the other commands must read it without complaint.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = CFuzzFolder::Path("file");
    static const std::string table = CFuzzFolder::Path("table.npy");
    PrintNowhere();
    WriteBytes(path, Input(data, size));
    const char* const file = path.c_str();
    const int verified = Run({"verify", "--json", file});
    const int told = Run({size % 2 == 0 ? "info" : "verify", file});
    const int compared = Run({"diff", file, file});
    const int sampled = Run({"samples", file, "--npy", "--table", "--force", "-o", table.c_str()});
    for (const int status : {verified, told, compared, sampled})
        Require(status >= 0 && status <= 2, "the exit status is documented");
    Require(compared != 1, "a file is equal to itself");
    if (verified == 0) Require(told == 0 && compared == 0, "a sound file is read without complaint");
    return 0;
}
