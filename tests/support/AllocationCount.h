#pragma once

#include <cstddef>

/// @file
/// Counts the allocations of a whole program that links the source file, and can make one of them fail.

/// Returns the number of allocations that the process has made so far.
std::size_t AllocationCount();

/// Returns the number of bytes that the process has asked for so far, freed or not.
std::size_t AllocatedBytes();

/// Returns the number of allocations that haven't been freed.
std::size_t LiveAllocations();

/// Makes the `count`-th allocation from now on fail, once; 0 means none.
void FailAllocation(std::size_t count);
