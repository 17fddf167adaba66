#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vxfileio/base/Api.h"

namespace gd_xml_stream {

/// One file of an XML archive, read or written from front to back.
///
/// What is written is gathered and reaches the system in large pieces: at the latest with `Flush` or `Close`. The
/// caller opens and closes it; the archive only uses it in between.
class VXFILEIO_API CFileBuffer {
 public:
    CFileBuffer();
    /// Closes the file if it is still open.
    ~CFileBuffer();
    CFileBuffer(const CFileBuffer&) = delete;
    CFileBuffer& operator=(const CFileBuffer&) = delete;

    /// Opens a file: a mode that begins with "w" creates or empties it for writing, any other opens it for reading.
    /// Bytes are never translated. Returns 0, or the system's error number; then `errorText`, unless null, receives
    /// the system's text for it, cut to `errorTextSize` bytes with the NUL at its end.
    int Open(const std::string& path, const std::string& mode, char* errorText = nullptr,
             std::size_t errorTextSize = 0);

    /// Opens a file for writing that replaces the one at the path, and does so with `Commit` alone: until then, and if
    /// it never comes, a file that was there is as it was. What is no plain file, or stands where no second one can be
    /// made, is written in place as by `Open`. Returns an empty text, or in words why the file can't be opened.
    std::string OpenReplacing(const std::string& path);

    /// Ends what `OpenReplacing` began: hands everything to the system, closes the file and puts it in its place.
    /// Returns an empty text, or in words what the system refused first.
    std::string Commit();

    /// Hands everything to the system and closes the file. Without an open file it does nothing.
    void Close();

    /// Takes `count` bytes and returns how many it took: all, or 0 without a file open for writing.
    std::size_t Write(const void* bytes, std::size_t count);

    /// Hands to the system what was gathered. What the system refuses is dropped and not reported.
    void Flush();

    /// Reads up to `count` bytes. Returns their number and stores it in `read`; less than `count` only at the end of
    /// the file.
    std::size_t Read(void* buffer, std::size_t count, std::size_t& read);

    /// Returns the size of the open file in bytes; 0 without one.
    std::int64_t Size() const;

 private:
    struct CState;
    std::unique_ptr<CState> m_state;
};

}  // namespace gd_xml_stream
