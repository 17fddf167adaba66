#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vxfileio/base/Api.h"

namespace gd_xml_stream {

/// One file of an XML archive, read or written from front to back.
///
/// Buffers what is written and passes it to the operating system in large pieces, at the latest with `Flush` or
/// `Close`. The caller opens and closes the file; the archive uses it in between. Needs external synchronization.
class VXFILEIO_API CFileBuffer {
 public:
    CFileBuffer();
    /// Closes the file if it is still open.
    ~CFileBuffer();
    CFileBuffer(const CFileBuffer&) = delete;
    CFileBuffer& operator=(const CFileBuffer&) = delete;

    /// Opens a file: a mode that begins with "w" creates or empties it for writing, any other opens it for reading.
    /// Bytes are never translated. Returns 0, or the system's error number; `errorText`, unless null, then receives
    /// the system's text for it, cut to `errorTextSize` bytes including the NUL.
    [[nodiscard]] int Open(const std::string& path, const std::string& mode, char* errorText = nullptr,
                           std::size_t errorTextSize = 0);

    /// Opens a file for writing that replaces the one at the path when `Commit` is called. Without `Commit` the old
    /// file stays unchanged. Writes in place, as `Open` does, if the path isn't a regular file or if its folder takes
    /// no second one. Returns an empty text, or a sentence that says why the file can't be opened.
    [[nodiscard]] std::string OpenReplacing(const std::string& path);

    /// Completes what `OpenReplacing` began: passes everything to the operating system, closes the file and replaces
    /// the old one. Returns an empty text, or a sentence that describes the first failure.
    [[nodiscard]] std::string Commit();

    /// Passes everything to the operating system and closes the file. Does nothing without an open file.
    void Close();

    /// Appends `count` bytes and returns the number of bytes taken: `count`, or 0 without a file open for writing.
    std::size_t Write(const void* bytes, std::size_t count);

    /// Passes the buffered bytes to the operating system. Bytes that it refuses are dropped; only `Commit` reports
    /// that.
    void Flush();

    /// Reads up to `count` bytes. Returns the number of bytes read and stores it in `read`; it is below `count` only at
    /// the end of the file.
    std::size_t Read(void* buffer, std::size_t count, std::size_t& read);

    /// Returns whether the file that is open for reading has bytes that weren't read. After `Read` reached what seemed
    /// to be the end, that means that the system refused to deliver them.
    bool IsReadFailed() const;

    /// Returns the size of the open file in bytes; 0 without one.
    std::int64_t Size() const;

 private:
    struct CState;
    std::unique_ptr<CState> m_state;
};

}  // namespace gd_xml_stream
