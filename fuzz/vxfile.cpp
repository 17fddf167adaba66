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

/// What the commands print goes nowhere; what the fuzzer prints passes by the stream.
void PrintNowhere() {
    static const bool isDone = std::freopen("/dev/null", "w", stdout) != nullptr;
    Require(isDone, "there is /dev/null");
    std::cerr.rdbuf(nullptr);
}

}  // namespace

/// Gives any bytes to the commands that read. None ends but by a status that it tells, a file is equal to itself or
/// can't be compared, and what verify calls sound is read by the others without complaint.
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
        Require(status >= 0 && status <= 2, "the exit status is one that is told");
    Require(compared != 1, "a file is equal to itself");
    if (verified == 0) Require(told == 0 && compared == 0, "a sound file is read without complaint");
    return 0;
}
