#include <windows.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "vxfileio/helpers/File.h"

namespace vxfileio {

namespace {

/// Others may read, write, rename and remove the file while it is open here, as on other systems.
constexpr DWORD kShareWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The most bytes that one system call is asked to move; its count has 32 bits.
constexpr std::size_t kMostBytesPerCall = std::size_t{1} << 30;

HANDLE Native(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::intptr_t OpenPath(const std::string& path, DWORD access, DWORD disposition, std::error_code& error) {
    error = std::make_error_code(std::errc::invalid_argument);
    if (!IsWholePath(path)) return reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
    const HANDLE handle =
        ::CreateFileA(path.c_str(), access, kShareWithAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    error = {handle == INVALID_HANDLE_VALUE ? static_cast<int>(::GetLastError()) : 0, std::system_category()};
    return reinterpret_cast<std::intptr_t>(handle);
}

/// The position of a transfer, in the form that the system takes it.
OVERLAPPED At(std::int64_t position) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(static_cast<std::uint64_t>(position) & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(position) >> 32U);
    return place;
}

/// Moves one buffer after the other through `call(data, size, place, moved)` until all is moved, the file ends or the
/// system refuses; returns the bytes. Plain files have no gathered call here.
template <class Call, class Buffers>
std::size_t Transfer(Call call, std::int64_t position, const Buffers& buffers) {
    std::size_t done = 0;
    if (position < 0) return done;
    for (auto buffer : buffers) {
        while (!buffer.empty()) {
            const std::int64_t room = std::numeric_limits<std::int64_t>::max() - position;
            if (static_cast<std::int64_t>(done) > room) return done;
            OVERLAPPED place = At(position + static_cast<std::int64_t>(done));
            DWORD moved = 0;
            const auto size = static_cast<DWORD>(std::min(buffer.size(), kMostBytesPerCall));
            if (!call(buffer.data(), size, &place, &moved) || moved == 0) return done;
            buffer = buffer.subspan(moved);
            done += moved;
        }
    }
    return done;
}

}  // namespace

/// What stands behind a colon would name a hidden stream of the file, or a file of another drive.
bool IsFileName(const std::string& name) {
    return IsWholePath(name) && name.find_first_of(R"(/\:)") == std::string::npos;
}

bool CFile::OpenForReading(const std::string& path) {
    Close();
    m_handle = OpenPath(path, GENERIC_READ, OPEN_EXISTING, m_openError);
    return IsOpen();
}

bool CFile::OpenForUpdate(const std::string& path) {
    Close();
    m_handle = OpenPath(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING, m_openError);
    m_end = Size();
    return IsOpen();
}

bool CFile::Create(const std::string& path) {
    Close();
    m_handle = OpenPath(path, GENERIC_WRITE, CREATE_ALWAYS, m_openError);
    m_end = 0;
    return IsOpen();
}

bool CFile::Close() {
    if (!IsOpen()) return true;
    return ::CloseHandle(Native(std::exchange(m_handle, kClosed))) != 0;
}

std::size_t CFile::ReadUpTo(std::int64_t position, std::initializer_list<CMutableBytes> buffers) const {
    const auto read = [this](std::byte* data, DWORD size, OVERLAPPED* place, DWORD* moved) {
        return ::ReadFile(Native(m_handle), data, size, moved, place) != 0;
    };
    return Transfer(read, position, buffers);
}

bool CFile::WriteAt(std::int64_t position, std::initializer_list<CBytes> buffers) {
    std::size_t wanted = 0;
    for (const CBytes& buffer : buffers)
        wanted += buffer.size();
    const auto write = [this](const std::byte* data, DWORD size, OVERLAPPED* place, DWORD* moved) {
        return ::WriteFile(Native(m_handle), data, size, moved, place) != 0;
    };
    return Transfer(write, position, buffers) == wanted;
}

std::int64_t CFile::Size() const {
    LARGE_INTEGER size{};
    return ::GetFileSizeEx(Native(m_handle), &size) != 0 ? size.QuadPart : 0;
}

bool CFile::Truncate(std::int64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = size;
    return ::SetFileInformationByHandle(Native(m_handle), FileEndOfFileInfo, &end, sizeof end) != 0;
}

}  // namespace vxfileio
