#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// @file
/// Wraps the system calls of the library's file operations and can make any of them fail. To use it, link the source
/// with the options in this folder's CMakeLists.txt.

/// What happens to a call, and to all later calls if the fault persists. Only opening and transfers can be cut short or
/// interrupted; other calls are made as usual.
struct CFault {
    enum class enKind { Error, Half, Interrupted, Kill };
    enKind kind = enKind::Error;
    int error = 0;  ///< The error's number.
    bool goesOn = false;
    std::string_view calls = {};  ///< The names of the calls to count, separated by blanks; empty means all.
};

/// Starts counting calls. The fault applies to call number `at`, from 1; 0 means none.
void BeginCalls(int at, const CFault& fault);

/// Starts counting calls, and calls `act` before call number `at`; nothing fails. Calls made by `act` aren't counted.
void BeginCalls(int at, std::string_view calls, std::function<void()> act);

/// Stops counting and returns the number of calls.
int EndCalls();

/// Calls `act` with the offset and the bytes of each write that the system took, from now on; null ends it.
void WatchWrites(std::function<void(std::int64_t offset, const std::string& bytes)> act);
