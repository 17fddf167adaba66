#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

/// Returns the number of heap allocations so far. The function only exists if CountAllocations.cpp is preloaded.
extern "C" __attribute__((weak)) long CountedAllocations();

/// Returns the program's own peak memory in KiB. (`getrusage` would include that of the process that started it.)
inline long PeakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return 0;
}

/// Resets the peak to the current memory use.
inline void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << 5 << std::flush; }

/// Prints the seconds that `work` takes, the KiB by which its peak exceeds the memory use before, and its allocations
/// if they are counted. The names passed to `access` don't exist: they mark the work in a trace of system calls.
template <class Work>
void Measure(Work work) {
    ForgetPeak();
    const long before = PeakKiB();
    const auto allocations = [] { return CountedAllocations != nullptr ? CountedAllocations() : -1; };
    access("work begins", F_OK);
    const long first = allocations();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    const long last = allocations();
    access("work ends", F_OK);
    std::printf("%.6f %ld %ld\n", seconds.count(), PeakKiB() - before, last - first);
}
