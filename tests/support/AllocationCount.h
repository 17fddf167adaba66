#pragma once

#include <cstddef>

/// Returns how many allocations the process has made so far. Linking its source counts them for the whole program.
std::size_t AllocationCount();
