#pragma once

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

/// The program's own peak memory. The usual call would count that of the process that started it, too.
inline long PeakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long peak = 0;
        if (word == "VmHWM:" && status >> peak) return peak;
    }
    return 0;
}

/// Prints the seconds that `work` takes and the peak memory in KiB behind it.
template <class Work>
void Measure(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.6f %ld\n", seconds.count(), PeakKiB());
}
