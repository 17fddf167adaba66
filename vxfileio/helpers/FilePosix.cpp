#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "vxfileio/helpers/File.h"

static_assert(sizeof(off_t) == sizeof(std::int64_t), "files beyond 2 GiB need 64-bit positions");

namespace vxfileio {

namespace {

/// Readable and writable by whom the process's own mask allows.
constexpr mode_t kNewFileMode = 0666;

/// O_NONBLOCK lets opening a pipe fail or return instead of waiting for its other end; it does nothing to plain files.
constexpr int kAlways = O_CLOEXEC | O_NONBLOCK;

int OpenPath(std::string path, int flags, std::error_code& error) {
    error = std::make_error_code(std::errc::invalid_argument);
    if (!IsWholePath(path)) return -1;
    std::replace(path.begin(), path.end(), '\\', '/');
    int handle = -1;
    do {
        handle = ::open(path.c_str(), flags | kAlways, kNewFileMode);
    } while (handle < 0 && errno == EINTR);
    error = {handle < 0 ? errno : 0, std::generic_category()};
    return handle;
}

bool IsFolder(int handle) {
    struct stat status {};
    return ::fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
}

/// The part of a gathered transfer that is still to be done.
class CPending {
 public:
    template <class Buffers>
    explicit CPending(const Buffers& buffers) {
        for (const auto& buffer : buffers) {
            if (buffer.empty() || m_count == m_parts.size()) continue;
            // The system's description of a buffer serves both directions, so it can't be constant.
            m_parts[m_count++] = {const_cast<std::byte*>(buffer.data()), buffer.size()};
        }
    }

    bool IsEmpty() const { return m_first == m_count; }
    const iovec* Data() const { return m_parts.data() + m_first; }
    int Count() const { return static_cast<int>(m_count - m_first); }

    void Pass(std::size_t bytes) {
        while (!IsEmpty() && bytes >= m_parts[m_first].iov_len)
            bytes -= m_parts[m_first++].iov_len;
        if (IsEmpty()) return;
        iovec& part = m_parts[m_first];
        part = {static_cast<std::byte*>(part.iov_base) + bytes, part.iov_len - bytes};
    }

 private:
    std::array<iovec, CFile::kMostBuffers> m_parts{};
    std::size_t m_first = 0;
    std::size_t m_count = 0;
};

/// Repeats a gathered system call until all is transferred, the file ends or the system refuses; returns the bytes.
template <class Call>
std::size_t Transfer(Call call, std::intptr_t handle, std::int64_t position, CPending pending) {
    std::size_t done = 0;
    while (!pending.IsEmpty()) {
        const ssize_t moved = call(static_cast<int>(handle), pending.Data(), pending.Count(), position);
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) break;
        pending.Pass(static_cast<std::size_t>(moved));
        done += static_cast<std::size_t>(moved);
        position += moved;
    }
    return done;
}

}  // namespace

bool IsFileName(const std::string& name) {
    return IsWholePath(name) && name.find_first_of(R"(/\)") == std::string::npos;
}

bool CFile::OpenForReading(const std::string& path) {
    Close();
    const int handle = OpenPath(path, O_RDONLY, m_openError);
    if (handle < 0) return false;
    m_handle = handle;
    if (IsFolder(handle)) {
        Close();
        m_openError = std::make_error_code(std::errc::is_a_directory);
    }
    return IsOpen();
}

bool CFile::OpenForUpdate(const std::string& path) {
    Close();
    m_handle = OpenPath(path, O_RDWR, m_openError);
    m_end = Size();
    return IsOpen();
}

bool CFile::Create(const std::string& path) {
    Close();
    const int handle = OpenPath(path, O_WRONLY | O_CREAT | O_TRUNC, m_openError);
    if (handle < 0) return false;
    m_handle = handle;
    m_end = 0;
    return true;
}

bool CFile::Close() {
    if (!IsOpen()) return true;
    return ::close(static_cast<int>(std::exchange(m_handle, kClosed))) == 0;
}

std::size_t CFile::ReadUpTo(std::int64_t position, std::initializer_list<CMutableBytes> buffers) const {
    return Transfer(::preadv, m_handle, position, CPending(buffers));
}

bool CFile::WriteAt(std::int64_t position, std::initializer_list<CBytes> buffers) {
    std::size_t wanted = 0;
    for (const CBytes& buffer : buffers)
        wanted += buffer.size();
    return Transfer(::pwritev, m_handle, position, CPending(buffers)) == wanted;
}

std::int64_t CFile::Size() const {
    struct stat status {};
    return ::fstat(static_cast<int>(m_handle), &status) == 0 ? status.st_size : 0;
}

bool CFile::Truncate(std::int64_t size) { return ::ftruncate(static_cast<int>(m_handle), size) == 0; }

}  // namespace vxfileio
