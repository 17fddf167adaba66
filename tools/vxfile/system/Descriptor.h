#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace vxfile {

/// Writes bytes unbuffered to a pipe, a device or standard output. On failure, operations return false and set `errno`.
/// Writes nothing after Ctrl-C.
class CDescriptor {
 public:
    CDescriptor() = default;
    ~CDescriptor() { static_cast<void>(Close()); }  // a device has everything by now
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    /// Opens a pipe or a device.
    [[nodiscard]] bool Open(const std::string& path);

    /// Writes to an open file by its number, without closing it. 1 is standard output, whose bytes are passed unchanged
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
