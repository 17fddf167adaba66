#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <string_view>

#include "vxfileio/helpers/File.h"

namespace vxfileio::helpers {

namespace {

/// Others may read, write, rename and remove the file while it is open here, as on other systems.
constexpr DWORD kShareWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The most bytes that one system call is asked to move; its count has 32 bits.
constexpr std::size_t kMostBytesPerCall = std::size_t{1} << 30;

HANDLE Native(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::error_code SystemError(DWORD number) { return {static_cast<int>(number), std::system_category()}; }

/// The outcome of a call that returns 0 if it fails.
std::error_code Outcome(BOOL result) { return SystemError(result == 0 ? ::GetLastError() : 0); }

/// The code page of narrow paths.
std::atomic<UINT> pathCodePage = CP_ACP;

/// A path in the form that the system takes; empty, which no call accepts, if it can't be converted. Doesn't allocate:
/// when memory has run out, files must still be removed.
class CWide {
 public:
    explicit CWide(const std::string& path) noexcept {
        const UINT page = pathCodePage;
        const DWORD flags = page == CP_UTF8 ? MB_ERR_INVALID_CHARS : 0;
        const auto size = static_cast<int>(std::min<std::size_t>(path.size(), std::numeric_limits<int>::max()));
        const int used = ::MultiByteToWideChar(page, flags, path.data(), size, m_text.data(), static_cast<int>(kMost));
        m_text[static_cast<std::size_t>(used)] = L'\0';
    }

    const wchar_t* c_str() const noexcept { return m_text.data(); }

 private:
    static constexpr std::size_t kMost = 4096;  ///< Longer than real paths, and small for a stack.

    std::array<wchar_t, kMost + 1> m_text;
};

/// Returns a path of the system in the code page of paths.
std::string Narrow(std::wstring_view path) {
    constexpr std::size_t kMostBytes = 4;  // for a unit of UTF-16, in any code page
    std::string narrow(kMostBytes * path.size(), '\0');
    narrow.resize(static_cast<std::size_t>(::WideCharToMultiByte(pathCodePage, 0, path.data(),
                                                                 static_cast<int>(path.size()), narrow.data(),
                                                                 static_cast<int>(narrow.size()), nullptr, nullptr)));
    return narrow;
}

std::intptr_t OpenPath(const std::string& path, DWORD access, DWORD disposition, std::error_code& error,
                       DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    error = std::make_error_code(std::errc::invalid_argument);
    if (!IsWholePath(path)) return reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
    const HANDLE handle =
        ::CreateFileW(CWide(path).c_str(), access, kShareWithAll, nullptr, disposition, attributes, nullptr);
    error = Outcome(handle != INVALID_HANDLE_VALUE);
    return reinterpret_cast<std::intptr_t>(handle);
}

/// How often, and after how many milliseconds again, a file is moved over one that somebody has open at the moment.
constexpr int kMostMoves = 20;
constexpr DWORD kMovePause = 5;

/// The position of a transfer, in the form that the system takes it.
OVERLAPPED At(std::int64_t position) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(static_cast<std::uint64_t>(position) & 0xFFFFFFFFU);
    place.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(position) >> 32U);
    return place;
}

/// Moves one buffer after the other through `call(data, size, place, moved)` until all is moved, the file ends or the
/// system refuses. Returns the bytes, and why there are no more. Plain files have no gathered call here.
template <class Call, class Buffers>
std::size_t Transfer(Call call, std::int64_t position, const Buffers& buffers, std::error_code& error) {
    std::size_t done = 0;
    error = std::make_error_code(std::errc::invalid_argument);
    if (position < 0) return done;
    for (auto buffer : buffers) {
        while (!buffer.empty()) {
            const std::int64_t room = std::numeric_limits<std::int64_t>::max() - position;
            if (static_cast<std::int64_t>(done) > room) return done;
            OVERLAPPED place = At(position + static_cast<std::int64_t>(done));
            DWORD moved = 0;
            const auto size = static_cast<DWORD>(std::min(buffer.size(), kMostBytesPerCall));
            if (!call(buffer.data(), size, &place, &moved) || moved == 0) {
                const DWORD number = ::GetLastError();
                error = SystemError(number == 0 ? ERROR_WRITE_FAULT : number);
                return done;
            }
            buffer = buffer.subspan(moved);
            done += moved;
        }
    }
    error.clear();
    return done;
}

}  // namespace

/// Both slashes are taken as they are.
std::string NativePath(std::string path) { return path; }

/// A name with a colon would mean a hidden stream of the file, or a file of another drive.
bool IsFileName(const std::string& name) {
    return name.size() < MAX_PATH && !HasControls(name) && name.find_first_of(R"(/\:)") == std::string::npos;
}

bool CFile::OpenForReading(const std::string& path) {
    Begin(path);
    m_handle = OpenPath(path, GENERIC_READ, OPEN_EXISTING, m_failure.error);
    return IsOpen();
}

bool CFile::OpenForUpdate(const std::string& path) {
    Close();
    m_path = path;
    std::error_code error;
    m_handle = OpenPath(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING, error);
    m_end = Size();
    return Keep({error});
}

bool CFile::OpenForWriting(const std::string& path) {
    Begin(path);
    m_handle = OpenPath(path, GENERIC_WRITE, OPEN_EXISTING, m_failure.error);
    return IsOpen();
}

bool CFile::Create(const std::string& path) {
    Begin(path);
    m_handle = OpenPath(path, GENERIC_WRITE, CREATE_ALWAYS, m_failure.error);
    return IsOpen();
}

/// Whether a file is hidden goes with it. Its access list is that of the folder.
bool CFile::CreateLike(const std::string& path, const CFile& model) {
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    Begin(path);
    BY_HANDLE_FILE_INFORMATION found{};
    const bool isKnown = model.IsOpen() && ::GetFileInformationByHandle(Native(model.m_handle), &found) != 0;
    const DWORD attributes = isKnown ? found.dwFileAttributes & kKept : 0;
    m_handle = OpenPath(path, GENERIC_WRITE, CREATE_NEW, m_failure.error,
                        attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes);
    return IsOpen();
}

/// A colon after the drive would name a hidden stream of a file, which can't be moved.
std::string CFile::PlaceOf(const std::string& path) const {
    if (path.find(':', 2) != std::string::npos) return {};
    const DWORD attributes = ::GetFileAttributesW(CWide(path).c_str());
    const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (!IsOpen()) return isLink ? std::string() : path;
    if (::GetFileType(Native(m_handle)) != FILE_TYPE_DISK) return {};
    if (!isLink) return path;
    std::array<wchar_t, MAX_PATH> target{};
    const DWORD size = ::GetFinalPathNameByHandleW(Native(m_handle), target.data(), MAX_PATH, FILE_NAME_NORMALIZED);
    return size < target.size() ? Narrow({target.data(), size}) : std::string();
}

/// A device without a disk says so by its error.
std::error_code CFile::FlushHandle() noexcept {
    const std::error_code error = Outcome(::FlushFileBuffers(Native(m_handle)));
    const bool hasNoDisk = error.value() == ERROR_INVALID_FUNCTION || error.value() == ERROR_NOT_SUPPORTED;
    return hasNoDisk ? std::error_code() : error;
}

std::error_code CFile::CloseHandle() { return Outcome(::CloseHandle(Native(m_handle))); }

std::size_t CFile::ReadUpTo(std::int64_t position, std::span<const CMutableBytes> buffers) const {
    const auto read = [this](std::byte* data, DWORD size, OVERLAPPED* place, DWORD* moved) {
        return ::ReadFile(Native(m_handle), data, size, moved, place) != 0;
    };
    std::error_code ignored;
    return Transfer(read, position, buffers, ignored);
}

std::size_t CFile::ReadUpTo(std::int64_t position, CMutableBytes buffer) const {
    return ReadUpTo(position, std::span<const CMutableBytes>(&buffer, 1));
}

std::error_code CFile::WriteAll(std::int64_t position, std::initializer_list<CBytes> buffers) {
    const auto write = [this](const std::byte* data, DWORD size, OVERLAPPED* place, DWORD* moved) {
        return ::WriteFile(Native(m_handle), data, size, moved, place) != 0;
    };
    std::error_code error;
    Transfer(write, position, buffers, error);
    return error;
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

/// The system refuses as long as somebody has the old file open, which readers do for moments only. It returns once
/// the disk has the new name.
std::error_code MoveOver(const std::string& from, const std::string& to) noexcept {
    const CWide wideFrom(from);
    const CWide wideTo(to);
    std::error_code error;
    for (int i = 0; i < kMostMoves; ++i) {
        error = Outcome(
            ::MoveFileExW(wideFrom.c_str(), wideTo.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
        if (error != std::errc::permission_denied) break;
        ::Sleep(kMovePause);
    }
    return error;
}

std::string FolderOf(const std::string& /*path*/) { return {}; }

/// Names are flushed with the files, and by `MoveOver`.
std::error_code FlushFolder(const std::string& /*folder*/) noexcept { return {}; }

std::error_code LinkFile(const std::string& file, const std::string& name) noexcept {
    return Outcome(::CreateHardLinkW(CWide(name).c_str(), CWide(file).c_str(), nullptr));
}

void RemoveFile(const std::string& path) noexcept { ::DeleteFileW(CWide(path).c_str()); }

void TakePathsAsUtf8() noexcept { pathCodePage = CP_UTF8; }

}  // namespace vxfileio::helpers
