#pragma once

#include <cstddef>

/// @file
/// Linking the source counts the allocations of the whole program, and can make one fail.

/// Returns how many allocations the process has made so far.
std::size_t AllocationCount();

/// Returns how many of them have not been freed.
std::size_t LiveAllocations();

/// Makes the allocation of number `count` from now on fail, once; 0 is none.
void FailAllocation(std::size_t count);
