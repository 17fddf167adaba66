#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <system_error>

/// @file
/// The one way to the operating system's files. Every file of the library is opened here.

namespace vxfileio::helpers {

/// The system copies a file page by page, and writes its pages to the disk in any order.
inline constexpr std::int64_t kPageSize = 4096;

/// Bytes that are read from, owned by somebody else.
using CBytes = std::span<const std::byte>;
/// Bytes that are written into, owned by somebody else.
using CMutableBytes = std::span<std::byte>;

/// What the system refused to do with a file, and why. A fresh one is no failure.
struct CFileFailure {
    enum class enStep { Opening, Writing, Closing, Replacing, Flushing, FlushingFolder };

    std::error_code error;  ///< In the system's own numbers.
    enStep step = enStep::Opening;
    std::size_t bytes = 0;      ///< Writing: how many bytes were to be written.
    std::int64_t position = 0;  ///< Writing: where.

    /// Returns whether anything failed.
    explicit operator bool() const noexcept { return static_cast<bool>(error); }

    /// Puts it into words: "No space left on device, writing 40300 bytes at 123456 of " and the path in the form that
    /// the system takes; empty without a failure.
    std::string Text(const std::string& path) const;
};

/// A file of plain bytes with 64-bit positions.
///
/// There is no current position: every operation names its own, apart from `Append`, which knows where the file ended
/// when it was opened for writing. Paths are narrow bytes in the caller's code page; both slashes separate folders on
/// every host. Threads may read from one object at once, and others may read and write the file while it is open.
///
/// Nothing throws, except that opening may throw `std::bad_alloc`. A failure is a result, and the first one of opening,
/// writing, flushing or closing is kept for later, at no cost as long as there is none.
class CFile {
 public:
    CFile() = default;
    ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    /// Opens an existing file for reading; closes what was open. Returns false if it can't be opened or is a folder.
    [[nodiscard]] bool OpenForReading(const std::string& path);

    /// Opens an existing file for reading and writing, keeping its content; closes what was open. Returns false if it
    /// can't be opened or is a folder. An earlier failure is kept as the first.
    [[nodiscard]] bool OpenForUpdate(const std::string& path);

    /// Opens an existing file for writing alone, keeping its content; closes what was open. Returns false if it can't.
    [[nodiscard]] bool OpenForWriting(const std::string& path);

    /// Creates a file, or empties an existing one, for writing; closes what was open. Returns false if it can't.
    [[nodiscard]] bool Create(const std::string& path);

    /// Creates a file for writing where there was none, by a path in the form that the system takes, and gives it the
    /// rights of `model`, if that is open; closes what was open. Returns false if there is one or it can't; then
    /// no file is left. If the process may not set the owner or the group, its own is kept, and that group gets no more
    /// rights than everybody has.
    [[nodiscard]] bool CreateLike(const std::string& path, const CFile& model);

    /// Returns the real path of a file that was opened, or was not found, by this path: symbolic links followed, in the
    /// form that the system takes. Empty if it isn't a plain file or can't exist.
    std::string PlaceOf(const std::string& path) const;

    /// Returns the folder in which `Create` or `CreateLike` made the file, as `FolderOf` does.
    const std::string& Folder() const noexcept { return m_folder; }

    /// What failed first since the last opening; `OpenForUpdate` isn't counted.
    const CFileFailure& Failure() const noexcept { return m_failure; }

    /// The same in words, with the path; empty if nothing failed.
    std::string WriteError() const { return m_failure.Text(m_path); }

    /// Returns whether a file is open.
    bool IsOpen() const noexcept { return m_handle != kClosed; }

    /// Closes the file. Without an open file it does nothing. Returns false if the system reports a late failure.
    bool Close();

    /// Reads from `position` on up to the end of the buffer or of the file, and returns the number of bytes read.
    /// Returns 0 for an unreadable position. Bytes that weren't read keep their old content.
    std::size_t ReadUpTo(std::int64_t position, CMutableBytes buffer) const;

    /// Does the same with buffers that the bytes fill one after the other; there may be any number of them. Up to 256
    /// take one system call on POSIX, each takes one elsewhere.
    std::size_t ReadUpTo(std::int64_t position, std::span<const CMutableBytes> buffers) const;

    /// Fills the whole buffer from `position` on. Returns false if the file ends before that or can't be read; the
    /// buffer's content is then unspecified.
    [[nodiscard]] bool ReadExactly(std::int64_t position, CMutableBytes buffer) const {
        return ReadUpTo(position, buffer) == buffer.size();
    }

    /// Writes the buffers, one after the other, at `position`. Returns true once the system has all of them; there may
    /// be any number. Up to four take one system call.
    [[nodiscard]] bool WriteAt(std::int64_t position, std::initializer_list<CBytes> buffers);

    /// Writes the buffers, one after the other, after what was appended so far. If that fails, the file is truncated to
    /// its old end, so that the next `Append` starts where this one did.
    [[nodiscard]] bool Append(std::initializer_list<CBytes> buffers);

    /// Waits until the disk has everything written so far, and the size. Returns false if the system refuses, and from
    /// then on: what the disk didn't take may be gone from memory, too. What has no disk, such as a pipe, and a file
    /// system that doesn't flush return true. Without an open file it returns false, which isn't kept as a failure.
    [[nodiscard]] bool FlushToDisk() noexcept;

    /// Waits until the disk has the name of a file opened by `Create` or `CreateLike`, in the folder where it was
    /// created. Returns false if the system refuses; it can be called again.
    [[nodiscard]] bool FlushFolder() noexcept;

    /// Returns where the next `Append` begins. Only meaningful for a file opened for writing.
    std::int64_t End() const noexcept { return m_end; }

    /// Asks the system for the size in bytes; 0 if it doesn't know.
    std::int64_t Size() const;

 private:
    void Begin(const std::string& path);
    bool Keep(CFileFailure failure) noexcept;
    bool Truncate(std::int64_t size);
    std::error_code CloseHandle();
    std::error_code FlushHandle() noexcept;
    std::error_code WriteAll(std::int64_t position, std::initializer_list<CBytes> buffers);

    static constexpr std::intptr_t kClosed = -1;

    std::intptr_t m_handle = kClosed;  ///< The system's handle.
    std::string m_path;
    std::string m_folder;  ///< Where the file was created.
    CFileFailure m_failure;
    std::int64_t m_end = 0;      ///< Where the next `Append` begins.
    bool m_isFlushLost = false;  ///< A flush failed.
};

/// Makes paths UTF-8 from now on, in the program or DLL that this copy of the library is linked into. On systems that
/// take paths as bytes, it does nothing.
void TakePathsAsUtf8() noexcept;

/// Replaces a file by another atomically. Both are paths in the form that the system takes.
[[nodiscard]] std::error_code MoveOver(const std::string& from, const std::string& to) noexcept;

/// Returns the folder of a file that exists or is to be created, in the form that the system takes, and independent of
/// the current folder. If the path is a symbolic link, it is that of its target.
std::string FolderOf(const std::string& path);

/// Waits until the disk has the names in a folder that `FolderOf` returned. A system that flushes names with the files
/// does nothing.
[[nodiscard]] std::error_code FlushFolder(const std::string& folder) noexcept;

/// Creates a second name for a file; it must be free. Both are paths in the form that the system takes.
[[nodiscard]] std::error_code LinkFile(const std::string& file, const std::string& name) noexcept;

/// Removes a file, by its path in the form that the system takes.
void RemoveFile(const std::string& path) noexcept;

/// Returns a path in the form that the system takes, which isn't asked for it.
std::string NativePath(std::string path);

/// Returns whether a system call would take a path in full: a NUL byte would cut it, naming another file.
inline bool IsWholePath(const std::string& path) { return path.find('\0') == std::string::npos; }

/// Returns whether a text has a control character.
inline bool HasControls(const std::string& text) {
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    return std::any_of(text.begin(), text.end(), isControl);
}

/// Returns a text with a question mark in place of each control character.
inline std::string WithoutControls(std::string text) {
    for (char& c : text) {
        if (HasControls({c})) c = '?';
    }
    return text;
}

/// Returns whether a name can be that of a file in its folder: it isn't too long, and has no separator, no control
/// character, and none of the characters that mean something else to the system.
bool IsFileName(const std::string& name);

}  // namespace vxfileio::helpers
