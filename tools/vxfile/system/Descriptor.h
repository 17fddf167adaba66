#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace vxfile {

/// A pipe, a device, or standard output, to which bytes are written without a buffer. An operation that fails returns
/// false and sets `errno`. After Ctrl-C nothing is written.
class CDescriptor {
 public:
    CDescriptor() = default;
    ~CDescriptor() { static_cast<void>(Close()); }  // a device has taken everything by now
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    /// Opens a pipe or a device.
    [[nodiscard]] bool Open(const std::string& path);

    /// Writes to an open file by its number, and doesn't close it. 1 is standard output, to which bytes pass unchanged
    /// from now on.
    void UseOpen(int number);

    /// Writes all bytes.
    [[nodiscard]] bool Write(std::span<const std::byte> bytes);

    /// Closes the file, unless it was open before.
    [[nodiscard]] bool Close();

 private:
    static constexpr int kClosed = -1;

    int m_number = kClosed;
    bool m_isOwn = false;
};

}  // namespace vxfile
