#pragma once

/// @file
/// Memory for the way out. Where memory has run short, a failure still has to unwind, and destructors and the sentence
/// for the user want some, too.

namespace vxfile {

/// What the user is told then.
inline constexpr const char* kNoMemory =
    "There isn't enough memory for this; close other programs, or take a machine that has more.";

/// Puts some memory by, in two parts, unless that is done. The first part is given free without a word when memory runs
/// short, since destructors that want memory can't fail; `CheckMemory` tells then. When it runs short again, the second
/// part is given free, and `std::bad_alloc` is thrown. Whoever has caught that and goes on calls this again.
/// Should a destructor fail for want of memory all the same, the program says `kNoMemory` and ends with `kTrouble`.
void KeepMemoryReserve();

/// Throws `std::bad_alloc`, and gives all that was put by free, if memory has run short. It costs next to nothing.
void CheckMemory();

}  // namespace vxfile
