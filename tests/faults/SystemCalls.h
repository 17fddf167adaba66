#pragma once

#include <functional>
#include <string_view>

/// @file
/// The system calls of the library's files, each of which can be made to fail. Linking the source with the options that
/// its folder's build tells puts it between the static library and the system.

/// What happens to a call, and to all behind it if it goes on. Only opening and transfers are ever cut short or
/// interrupted; other calls are made as if nothing were.
struct CFault {
    enum class enKind { Error, Half, Interrupted, Kill };
    enKind kind = enKind::Error;
    int error = 0;  ///< The error's number.
    bool goesOn = false;
    std::string_view calls = {};  ///< The names of the only calls that count, with blanks between them; empty is all.
};

/// From now on calls are counted, and that of number `at`, from 1, meets the fault; 0 is none.
void BeginCalls(int at, const CFault& fault);

/// The same, but `act` is called ahead of that call, and nothing fails. What it calls itself isn't counted.
void BeginCalls(int at, std::string_view calls, std::function<void()> act);

/// Ends that, and returns how many calls there were.
int EndCalls();
