#pragma once

#include <pybind11/pybind11.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <utility>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/VXExceptions.h"

/// @file
/// Calls of the library from Python: without the interpreter's lock, interruptible with Ctrl-C, and with failures that
/// name a file.

namespace vxfileio::python {

namespace py = pybind11;

/// A failure of the library, as Python needs it.
struct CFailure {
    std::string text;
    std::string path;  ///< The file, as the system spells it. Empty if there is none.
    int code = 0;      ///< `errno` after the failure, or 0.
};

/// Raises a failure as the Python exception that `vxfileio._errors` maps it to.
[[noreturn]] void Raise(const CFailure& failure);

/// Calls `work()` and throws its failures as `CFailure` with this path.
template <class Work>
auto WithPath(const std::string& path, Work work) {
    errno = 0;
    try {
        return work();
    } catch (const CExcVXReader& failure) {
        const int code = errno;
        throw CFailure{failure.GetMsg(), path, code};
    } catch (const base::CVXExceptions& failure) {
        throw CFailure{failure.message, path};
    }
}

/// Returns what a call that has ended returned, or raises its failure.
///
/// When the interpreter exits, waiting for its lock ends all threads but the main one. That unwinds the stack, which
/// may begin neither in a destructor, as that of `py::gil_scoped_release`, nor while an exception is handled. So the
/// lock is taken and Python's code runs outside of both.
template <class Result>
Result ResultOf(std::future<Result>& ended) {
    CFailure failure;
    try {
        return ended.get();
    } catch (CFailure& thrown) {
        failure = std::move(thrown);
    }
    Raise(failure);
}

/// Calls `work()` without the interpreter's lock, and raises its failures with this path.
template <class Work>
auto WithoutLock(const std::string& path, Work work) {
    std::packaged_task task([&] { return WithPath(path, std::move(work)); });
    auto result = task.get_future();
    PyThreadState* const thread = PyEval_SaveThread();
    task();
    PyEval_RestoreThread(thread);
    return ResultOf(result);
}

/// Throws if Ctrl-C was pressed. Only for the main thread, which handles signals; it may be without the lock.
void CheckSignals();

/// Returns whether the caller is the thread that handles signals.
bool IsMainThread();

/// Returns whether a file is so small that reading all of it takes a fraction of a second.
bool IsSmallFile(const std::string& path);

/// Like `WithoutLock`, for work that reads a file once, but ends early if Ctrl-C is pressed. `work()` then continues in
/// its own thread, so it must own all that it uses and returns. Small files are read without a thread, which is
/// cheaper; Ctrl-C takes effect after that.
template <class Work>
auto Interruptible(const std::string& path, Work work) {
    if (IsSmallFile(path) || !IsMainThread()) return WithoutLock(path, std::move(work));
    std::packaged_task task([path, work = std::move(work)]() mutable { return WithPath(path, std::move(work)); });
    auto result = task.get_future();
    std::thread thread(std::move(task));
    try {
        const py::gil_scoped_release release;
        while (result.wait_for(std::chrono::milliseconds(50)) != std::future_status::ready)
            CheckSignals();
    } catch (...) {
        thread.detach();
        throw;
    }
    thread.join();
    return ResultOf(result);
}

}  // namespace vxfileio::python
