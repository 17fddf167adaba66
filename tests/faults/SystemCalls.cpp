#include "tests/faults/SystemCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace {

bool g_counts = false;
int g_calls = 0;
int g_at = 0;
CFault g_fault;
std::function<void()> g_act;
bool g_isSkipped = false;
std::vector<CRecordedCall>* g_record = nullptr;

/// Counts a call. Returns whether the fault applies to it.
bool IsMet(std::string_view call) {
    if (!g_counts || (!g_fault.calls.empty() && g_fault.calls.find(call) == std::string_view::npos)) return false;
    ++g_calls;
    const bool isMet = g_at != 0 && (g_fault.goesOn ? g_calls >= g_at : g_calls == g_at);
    if (!isMet || !g_act) return isMet;
    g_counts = false;
    g_act();
    g_counts = true;
    return false;
}

int Refuse(int error) {
    errno = error;
    return -1;
}

/// Makes a call unless the fault applies to it; `half` makes half of the transfer.
template <class Call, class Half>
auto Make(std::string_view name, Call call, Half half) -> decltype(call()) {
    if (!IsMet(name)) return call();
    if (g_fault.kind == CFault::enKind::Half) return half();
    if (g_fault.kind == CFault::enKind::Interrupted) return Refuse(EINTR);
    g_isSkipped = g_fault.kind == CFault::enKind::Skipped;
    if (g_isSkipped) return 0;
    return Refuse(g_fault.error);
}

template <class Call>
auto Make(std::string_view name, Call call) -> decltype(call()) {
    const bool isPlain = g_fault.kind == CFault::enKind::Half || g_fault.kind == CFault::enKind::Interrupted;
    if (!isPlain) return Make(name, call, call);
    IsMet(name);  // only counts the call
    return call();
}

/// Records the call that `describe` returns, unless it failed or was skipped. Returns its result.
template <class Result, class Describe>
Result Record(Result result, Describe describe) {
    const bool isMade = !std::exchange(g_isSkipped, false) && result >= 0;
    if (g_record != nullptr && isMade) g_record->push_back(describe());
    return result;
}

}  // namespace

void BeginCalls(int at, const CFault& fault) {
    g_counts = true;
    g_calls = 0;
    g_at = at;
    g_fault = fault;
    g_act = nullptr;
}

void BeginCalls(int at, std::string_view calls, std::function<void()> act) {
    BeginCalls(at, CFault{.calls = calls});
    g_act = std::move(act);
}

void RecordCalls(std::vector<CRecordedCall>* calls) { g_record = calls; }

int EndCalls() {
    g_counts = false;
    return g_calls;
}

extern "C" {

int __real_open(const char* path, int flags, mode_t mode);
int __real_close(int handle);
int __real_fstat(int handle, struct stat* status);
int __real_lstat(const char* path, struct stat* status);
ssize_t __real_readlink(const char* path, char* target, size_t size);
ssize_t __real_pread(int handle, void* buffer, size_t size, off_t position);
ssize_t __real_pwritev(int handle, const iovec* parts, int count, off_t position);
int __real_ftruncate(int handle, off_t size);
int __real_fchmod(int handle, mode_t mode);
int __real_fchown(int handle, uid_t owner, gid_t group);
int __real_fdatasync(int handle);
int __real_fsync(int handle);
int __real_link(const char* from, const char* to);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);

int __wrap_open(const char* path, int flags, mode_t mode) {
    struct stat status {};
    const bool isNew = (flags & O_TRUNC) != 0 || ((flags & O_CREAT) != 0 && __real_lstat(path, &status) != 0);
    const auto call = [&] { return __real_open(path, flags, mode); };
    const int handle = Make("open", call, call);
    return Record(handle,
                  [&] { return CRecordedCall{.name = "open", .handle = handle, .path = path, .isNew = isNew}; });
}
int __wrap_close(int handle) {  // closes the handle even if the call reports a failure
    const int result = __real_close(handle);
    return Make("close", [&] { return result; });
}
int __wrap_fstat(int handle, struct stat* status) {
    return Make("fstat", [&] { return __real_fstat(handle, status); });
}
int __wrap_lstat(const char* path, struct stat* status) {
    return Make("lstat", [&] { return __real_lstat(path, status); });
}
ssize_t __wrap_readlink(const char* path, char* target, size_t size) {
    return Make("readlink", [&] { return __real_readlink(path, target, size); });
}
// A short transfer moves only the first bytes.
ssize_t __wrap_pread(int handle, void* buffer, size_t size, off_t position) {
    return Make(
        "pread", [&] { return __real_pread(handle, buffer, size, position); },
        [&] { return __real_pread(handle, buffer, (size + 1) / 2, position); });
}
ssize_t __wrap_pwritev(int handle, const iovec* parts, int count, off_t position) {
    const iovec half{parts[0].iov_base, (parts[0].iov_len + 1) / 2};
    const ssize_t written = Make(
        "pwritev", [&] { return __real_pwritev(handle, parts, count, position); },
        [&] { return __real_pwritev(handle, &half, 1, position); });
    return Record(written, [&] {
        CRecordedCall call{.name = "pwritev", .handle = handle, .offset = position};
        for (int i = 0; i < count; ++i)
            call.bytes.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
        call.bytes.resize(static_cast<std::size_t>(written));
        return call;
    });
}
int __wrap_ftruncate(int handle, off_t size) {
    const int result = Make("ftruncate", [&] { return __real_ftruncate(handle, size); });
    return Record(result, [&] { return CRecordedCall{.name = "ftruncate", .handle = handle, .offset = size}; });
}
int __wrap_fchmod(int handle, mode_t mode) {
    return Make("fchmod", [&] { return __real_fchmod(handle, mode); });
}
int __wrap_fchown(int handle, uid_t owner, gid_t group) {
    return Make("fchown", [&] { return __real_fchown(handle, owner, group); });
}
int __wrap_fdatasync(int handle) {
    const int result = Make("fdatasync", [&] { return __real_fdatasync(handle); });
    return Record(result, [&] { return CRecordedCall{.name = "fdatasync", .handle = handle}; });
}
int __wrap_fsync(int handle) {
    const int result = Make("fsync", [&] { return __real_fsync(handle); });
    return Record(result, [&] { return CRecordedCall{.name = "fsync", .handle = handle}; });
}
int __wrap_rename(const char* from, const char* to) {
    const int result = Make("rename", [&] { return __real_rename(from, to); });
    return Record(result, [&] { return CRecordedCall{.name = "rename", .path = from, .to = to}; });
}
int __wrap_link(const char* from, const char* to) {
    const int result = Make("link", [&] { return __real_link(from, to); });
    return Record(result, [&] { return CRecordedCall{.name = "link", .path = from, .to = to}; });
}
int __wrap_unlink(const char* path) {
    const int result = Make("unlink", [&] { return __real_unlink(path); });
    return Record(result, [&] { return CRecordedCall{.name = "unlink", .path = path}; });
}

}  // extern "C"
