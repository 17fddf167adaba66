#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace vxfile {

/// An XXH3-128 with seed 0 in its canonical form: its most significant byte first.
using CXxh3Sum = std::array<unsigned char, 16>;

/// The XXH3-128 of bytes in several pieces.
class CXxh3 {
 public:
    CXxh3();
    ~CXxh3();
    CXxh3(const CXxh3&) = delete;
    CXxh3& operator=(const CXxh3&) = delete;

    void Add(std::span<const std::byte> bytes);

    /// Returns the sum of the bytes since the last call, and starts again.
    CXxh3Sum Take();

 private:
    struct CState;
    std::unique_ptr<CState> m_state;
};

}  // namespace vxfile
