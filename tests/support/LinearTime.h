#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>

/// Returns whether `work(4 * size)` takes less than nine times as long as `work(size)`: quadratic time is 16 times as
/// long. Counts the time of the processor, so that a busy machine changes nothing.
inline bool TakesLinearTime(std::size_t size, auto work) {
    const auto seconds = [&](std::size_t n) {
        const std::clock_t begin = std::clock();
        work(n);
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    const double first = seconds(size);
    const double least = std::min(first, seconds(size));  // the first may have had to warm up
    return seconds(4 * size) < 9 * least + 0.05;
}
