#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace vxfile {

/// The SHA-256 of bytes in several pieces, computed by the operating system. All operations throw `CFailure` if it
/// refuses.
class CSha256 {
 public:
    CSha256();
    ~CSha256();
    CSha256(const CSha256&) = delete;
    CSha256& operator=(const CSha256&) = delete;

    void Add(std::span<const std::byte> bytes);

    /// Returns the sum of all bytes as 64 hexadecimal digits. No operation may follow.
    std::string Finish();

 private:
    struct CState;
    std::unique_ptr<CState> m_state;
};

}  // namespace vxfile
