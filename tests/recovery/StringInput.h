#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "recovery/Input.h"

/// Bytes in memory to recover from.
class CStringInput : public vxfileio::recovery::CInput {
 public:
    explicit CStringInput(std::string bytes) : m_bytes(std::move(bytes)) {}

    std::int64_t Size() const override { return static_cast<std::int64_t>(m_bytes.size()); }
    std::size_t ReadUpTo(std::int64_t position, std::span<std::byte> buffer) const override {
        const auto begin = static_cast<std::size_t>(position);
        if (position < 0 || begin >= m_bytes.size()) return 0;
        const std::size_t size = std::min(buffer.size(), m_bytes.size() - begin);
        std::memcpy(buffer.data(), m_bytes.data() + begin, size);
        return size;
    }

 private:
    std::string m_bytes;
};
