#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// Wraps the system calls of the library's file operations and can make any of them fail. To use it, link the source
/// with the options in this folder's CMakeLists.txt.

/// What happens to a call, and to all later calls if the fault persists. Only opening and transfers can be cut short or
/// interrupted; other calls are made as usual. A skipped call isn't made, but returns success.
struct CFault {
    enum class enKind { Error, Half, Interrupted, Skipped };
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

/// A call that changed a file or a folder, or flushed one to the disk.
struct CRecordedCall {
    std::string_view name;
    int handle = -1;          ///< The handle of an open file, which "open" returned.
    std::string path = {};    ///< "open", "rename", "link", "unlink"
    std::string to = {};      ///< "rename", "link": the new name
    bool isNew = false;       ///< "open" created the file, or emptied it.
    std::int64_t offset = 0;  ///< "pwritev"; the size of "ftruncate"
    std::string bytes = {};   ///< "pwritev": the bytes that the system accepted
};

/// Appends each successful call to `calls` from now on. Null stops this.
void RecordCalls(std::vector<CRecordedCall>* calls);
