#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

/// Returns how often memory was taken from the heap so far. There is none unless CountAllocations.cpp is loaded ahead
/// of the program.
extern "C" __attribute__((weak)) long CountedAllocations();

/// The program's own peak memory in KiB. The usual call would count that of the process that started it, too.
inline long PeakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return 0;
}

/// Lets the peak begin anew with what is there at this moment.
inline void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << 5 << std::flush; }

/// Prints the seconds that `work` takes, the KiB that its peak is above what was there before, and, where they are
/// counted, its allocations. No file has the names that are asked for: they bound the work for who traces its calls.
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
