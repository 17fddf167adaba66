#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

#include "vxfileio/helpers/File.h"

static_assert(sizeof(off_t) == sizeof(std::int64_t), "files beyond 2 GiB need 64-bit positions");

namespace vxfileio::helpers {

namespace {

/// Readable and writable by whom the process's own mask allows.
constexpr mode_t kNewFileMode = 0666;

/// O_NONBLOCK lets opening a pipe fail or return instead of waiting for its other end; it does nothing to plain files.
constexpr int kAlways = O_CLOEXEC | O_NONBLOCK;

std::error_code SystemError(int number) { return {number, std::generic_category()}; }

/// The outcome of a call that returns a negative number if it fails.
std::error_code Outcome(int result) { return SystemError(result < 0 ? errno : 0); }

int OpenNative(const char* path, int flags, mode_t mode) noexcept {
    int handle = -1;
    do {
        handle = ::open(path, flags | kAlways, mode);
    } while (handle < 0 && errno == EINTR);
    return handle;
}

int OpenPath(const std::string& path, int flags, mode_t mode, std::error_code& error) {
    error = std::make_error_code(std::errc::invalid_argument);
    if (!IsWholePath(path)) return -1;
    const int handle = OpenNative(NativePath(path).c_str(), flags, mode);
    error = Outcome(handle);
    return handle;
}

/// Flushes by one of the system's calls. A device, a pipe or a file system that doesn't flush says so by its error.
std::error_code Flush(int (*call)(int), int handle) noexcept {
    int result = -1;
    do {
        result = call(handle);
    } while (result < 0 && errno == EINTR);
    const bool hasNoDisk = result < 0 && (errno == EINVAL || errno == ENOTSUP || errno == ENOSYS);
    return hasNoDisk ? std::error_code() : Outcome(result);
}

bool IsFolder(int handle) {
    struct stat status {};
    return ::fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
}

/// More links than that are a circle.
constexpr int kMostLinks = 40;

/// Goes from symbolic link to symbolic link to what is none.
std::string FollowLinks(std::string path) {
    std::array<char, PATH_MAX> target{};
    for (int i = 0; i < kMostLinks; ++i) {
        const ssize_t size = ::readlink(path.c_str(), target.data(), target.size());
        if (size <= 0) break;
        const std::size_t folder = target[0] == '/' ? 0 : path.rfind('/') + 1;
        path.resize(folder);
        path.append(target.data(), static_cast<std::size_t>(size));
    }
    return path;
}

/// Sets the owner of a file, as far as allowed, and its rights to those of another one.
std::error_code TakeRights(int handle, int model) {
    constexpr mode_t kRights = 07777;
    struct stat own {};
    struct stat wanted {};
    if (::fstat(handle, &own) < 0 || ::fstat(model, &wanted) < 0) return SystemError(errno);
    mode_t rights = wanted.st_mode & kRights;
    constexpr auto kSame = static_cast<uid_t>(-1);
    const bool hasGroup = own.st_gid == wanted.st_gid || ::fchown(handle, kSame, wanted.st_gid) == 0;
    if (!hasGroup) rights &= ~static_cast<mode_t>(S_IRWXG) | ((rights & S_IRWXO) << 3U);
    const bool hasOwner = own.st_uid == wanted.st_uid || ::fchown(handle, wanted.st_uid, kSame) == 0;
    if (!hasOwner || !hasGroup) rights &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
    return Outcome(::fchmod(handle, rights));
}

/// The part of a transfer of several buffers that is still to be done. One call takes up to `kMost` of them.
template <class Buffer, std::size_t kMost>
class CPending {
 public:
    explicit CPending(std::span<const Buffer> buffers) : m_buffers(buffers) { Refill(); }

    bool IsEmpty() const { return m_first == m_count; }
    const iovec* Data() const { return m_parts.data() + m_first; }
    int Count() const { return static_cast<int>(m_count - m_first); }

    void Pass(std::size_t bytes) {
        while (!IsEmpty() && bytes >= m_parts[m_first].iov_len)
            bytes -= m_parts[m_first++].iov_len;
        if (IsEmpty()) return Refill();
        iovec& part = m_parts[m_first];
        part = {static_cast<std::byte*>(part.iov_base) + bytes, part.iov_len - bytes};
    }

 private:
    void Refill() {
        m_first = 0;
        m_count = 0;
        for (; !m_buffers.empty() && m_count < kMost; m_buffers = m_buffers.subspan(1)) {
            const Buffer& buffer = m_buffers.front();
            if (buffer.empty()) continue;
            // The system's description of a buffer serves both directions, so it can't be constant.
            m_parts[m_count++] = {const_cast<std::byte*>(buffer.data()), buffer.size()};
        }
    }

    std::span<const Buffer> m_buffers;  ///< Those that aren't in `m_parts` yet.
    std::array<iovec, kMost> m_parts;   ///< Set up to `m_count`.
    std::size_t m_first = 0;
    std::size_t m_count = 0;
};

}  // namespace

std::string NativePath(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

bool IsFileName(const std::string& name) {
    return name.size() <= NAME_MAX && !HasControls(name) && name.find_first_of(R"(/\)") == std::string::npos;
}

bool CFile::OpenForReading(const std::string& path) {
    Begin(path);
    const int handle = OpenPath(path, O_RDONLY, 0, m_failure.error);
    if (handle < 0) return false;
    m_handle = handle;
    if (IsFolder(handle)) {
        Close();
        m_failure = {std::make_error_code(std::errc::is_a_directory)};
    }
    return IsOpen();
}

bool CFile::OpenForUpdate(const std::string& path) {
    Close();
    m_path = path;
    std::error_code error;
    m_handle = OpenPath(path, O_RDWR, 0, error);
    m_end = Size();
    return Keep({error});
}

bool CFile::OpenForWriting(const std::string& path) {
    Begin(path);
    m_handle = OpenPath(path, O_WRONLY, 0, m_failure.error);
    return IsOpen();
}

bool CFile::Create(const std::string& path) {
    Begin(path);
    m_folder = FolderOf(path);
    m_handle = OpenPath(path, O_WRONLY | O_CREAT | O_TRUNC, kNewFileMode, m_failure.error);
    return IsOpen();
}

bool CFile::CreateLike(const std::string& path, const CFile& model) {
    Begin(path);
    m_folder = FolderOf(path);
    const mode_t mode = model.IsOpen() ? S_IRUSR | S_IWUSR : kNewFileMode;
    m_handle = OpenPath(path, O_WRONLY | O_CREAT | O_EXCL, mode, m_failure.error);
    if (!IsOpen() || !model.IsOpen()) return IsOpen();
    m_failure.error = TakeRights(static_cast<int>(m_handle), static_cast<int>(model.m_handle));
    if (!m_failure) return true;
    Close();
    RemoveFile(path);
    return false;
}

std::string CFile::PlaceOf(const std::string& path) const {
    std::string place = FollowLinks(NativePath(path));
    struct stat found {};
    struct stat own {};
    const bool isThere = ::lstat(place.c_str(), &found) == 0;
    if (!IsOpen()) return !isThere && errno == ENOENT ? place : std::string();
    const bool isOwn = isThere && ::fstat(static_cast<int>(m_handle), &own) == 0 && S_ISREG(own.st_mode) &&
                       own.st_dev == found.st_dev && own.st_ino == found.st_ino;
    return isOwn ? place : std::string();
}

std::error_code CFile::FlushHandle() noexcept { return Flush(::fdatasync, static_cast<int>(m_handle)); }

std::error_code CFile::CloseHandle() { return Outcome(::close(static_cast<int>(m_handle))); }

std::size_t CFile::ReadUpTo(std::int64_t position, CMutableBytes buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const CMutableBytes rest = buffer.subspan(done);
        const auto from = static_cast<off_t>(position + static_cast<std::int64_t>(done));
        const ssize_t read = ::pread(static_cast<int>(m_handle), rest.data(), rest.size(), from);
        if (read < 0 && errno == EINTR) continue;
        if (read <= 0) break;
        done += static_cast<std::size_t>(read);
    }
    return done;
}

std::size_t CFile::ReadUpTo(std::int64_t position, std::span<const CMutableBytes> buffers) const {
    std::size_t done = 0;
    CPending<CMutableBytes, 256> pending(buffers);
    while (!pending.IsEmpty()) {
        const auto from = static_cast<off_t>(position + static_cast<std::int64_t>(done));
        const ssize_t read = ::preadv(static_cast<int>(m_handle), pending.Data(), pending.Count(), from);
        if (read < 0 && errno == EINTR) continue;
        if (read <= 0) break;
        pending.Pass(static_cast<std::size_t>(read));
        done += static_cast<std::size_t>(read);
    }
    return done;
}

std::error_code CFile::WriteAll(std::int64_t position, std::initializer_list<CBytes> buffers) {
    CPending<CBytes, 4> pending({buffers.begin(), buffers.size()});
    while (!pending.IsEmpty()) {
        const ssize_t written = ::pwritev(static_cast<int>(m_handle), pending.Data(), pending.Count(), position);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return SystemError(written < 0 ? errno : EIO);
        pending.Pass(static_cast<std::size_t>(written));
        position += written;
    }
    return {};
}

std::int64_t CFile::Size() const {
    struct stat status {};
    return ::fstat(static_cast<int>(m_handle), &status) == 0 ? status.st_size : 0;
}

bool CFile::Truncate(std::int64_t size) { return ::ftruncate(static_cast<int>(m_handle), size) == 0; }

void TakePathsAsUtf8() noexcept {}

std::error_code MoveOver(const std::string& from, const std::string& to) noexcept {
    return Outcome(::rename(from.c_str(), to.c_str()));
}

std::string FolderOf(const std::string& path) {
    std::array<char, PATH_MAX> current{};
    std::string place = NativePath(path);
    if (!place.starts_with('/') && ::getcwd(current.data(), current.size()) != nullptr)
        place = std::string(current.data()) + '/' + place;
    place = FollowLinks(std::move(place));
    return place.substr(0, place.rfind('/') + 1);
}

std::error_code FlushFolder(const std::string& folder) noexcept {
    const int handle = OpenNative(folder.c_str(), O_RDONLY | O_DIRECTORY, 0);
    if (handle < 0) return SystemError(errno);
    const std::error_code error = Flush(::fsync, handle);
    ::close(handle);
    return error;
}

std::error_code LinkFile(const std::string& file, const std::string& name) noexcept {
    return Outcome(::link(file.c_str(), name.c_str()));
}

void RemoveFile(const std::string& path) noexcept { ::unlink(path.c_str()); }

}  // namespace vxfileio::helpers
