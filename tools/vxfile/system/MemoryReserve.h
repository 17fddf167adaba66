#pragma once

/// @file
/// A memory reserve. When memory runs out, unwinding, destructors and the error message still need some.

namespace vxfile {

/// The message in that case.
inline constexpr const char* kNoMemory =
    "There isn't enough memory for this; close other programs, or use a machine that has more.";

/// Allocates a reserve in two parts, unless it exists. The first part is freed silently when memory runs out, since
/// destructors must not fail; from then on `CheckMemory` throws. When it runs out again, the second part is freed and
/// `std::bad_alloc` is thrown. Call this again after catching that. If a destructor still fails to allocate memory, the
/// program prints `kNoMemory` and ends with `kTrouble`.
void KeepMemoryReserve();

/// If memory has run out, frees the whole reserve and throws `std::bad_alloc`. Its cost is negligible.
void CheckMemory();

}  // namespace vxfile
