#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace vxfile {

/// What bytes go to: a file, a pipe, a device, or standard output. Every call is one of the system's: there is no
/// buffer. What fails returns false, and `errno` tells why; after Ctrl-C nothing is written.
class CDescriptor {
 public:
    CDescriptor() = default;
    ~CDescriptor() { static_cast<void>(Close()); }  // whoever has to know whether that failed has closed it
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    /// Creates a file or empties an existing one, or opens what is no plain file.
    bool Create(const std::string& path);

    /// Takes a file that is open already, by its number: 1 is standard output, where bytes pass as they are from now
    /// on. It isn't closed.
    void UseOpen(int number);

    /// Writes all bytes at the current position, which moves behind them.
    bool Write(std::span<const std::byte> bytes);

    /// Moves the position to the start of the file.
    bool GoToFront();

    bool Close();

 private:
    static constexpr int kClosed = -1;

    int m_number = kClosed;
    bool m_isOwn = false;
};

}  // namespace vxfile
