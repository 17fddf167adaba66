#pragma once

#include <cstddef>

/// @file
/// Counts the allocations of a program that links the source file, and can make one of them fail.

/// Returns the number of allocations so far.
std::size_t AllocationCount();

/// Returns the number of bytes allocated so far, including those freed since.
std::size_t AllocatedBytes();

/// Returns the number of allocations that haven't been freed.
std::size_t LiveAllocations();

/// Makes the `count`-th allocation from now on fail, once; 0 means none.
void FailAllocation(std::size_t count);
