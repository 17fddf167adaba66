#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>

/// Returns whether `work(4 * size)` takes less than nine times as long as `work(size)`; with quadratic time it takes 16
/// times as long. Measures processor time, so that other programs have no influence. On Windows, std::clock measures
/// elapsed time instead, and other programs may spoil a measurement; quadratic time fails all three.
inline bool TakesLinearTime(std::size_t size, auto work) {
    const auto seconds = [&](std::size_t n) {
        const std::clock_t begin = std::clock();
        work(n);
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    for (int attempt = 0; attempt < 3; ++attempt) {
        const double first = seconds(size);
        const double least = std::min(first, seconds(size));  // the first run may include warming up
        if (seconds(4 * size) < 9 * least + 0.05) return true;
    }
    return false;
}
