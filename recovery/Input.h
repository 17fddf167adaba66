#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "vxfileio/helpers/File.h"

namespace vxfileio::recovery {

/// The bytes to recover from: a file, or bytes in memory. They are only read.
class CInput {
 public:
    CInput() = default;
    virtual ~CInput() = default;
    CInput(const CInput&) = delete;
    CInput& operator=(const CInput&) = delete;

    /// Returns the current number of bytes.
    virtual std::int64_t Size() const = 0;
    /// Reads from `position` up to the end of the buffer or of the input, and returns the number of bytes read.
    virtual std::size_t ReadUpTo(std::int64_t position, std::span<std::byte> buffer) const = 0;
};

/// The bytes of a file. The caller owns the file, which must outlive this object.
class CFileInput : public CInput {
 public:
    explicit CFileInput(const helpers::CFile& file) : m_file(file) {}

    std::int64_t Size() const override { return m_file.Size(); }
    std::size_t ReadUpTo(std::int64_t position, std::span<std::byte> buffer) const override {
        return m_file.ReadUpTo(position, buffer);
    }

 private:
    const helpers::CFile& m_file;
};

/// The system failed to read bytes of the input.
class CReadFailure : public std::runtime_error {
 public:
    explicit CReadFailure(std::int64_t position) : std::runtime_error("unreadable byte"), m_position(position) {}
    /// Returns the offset of the first byte that couldn't be read.
    std::int64_t Position() const noexcept { return m_position; }

 private:
    std::int64_t m_position;
};

/// Views of an input, read in blocks that grow during sequential reading.
class CWindow {
 public:
    /// Views the first `size` bytes of the input and ignores what is appended later. The input must outlive this
    /// object.
    CWindow(const CInput& input, std::int64_t size) : m_input(input), m_size(size) {}

    std::int64_t Size() const noexcept { return m_size; }

    /// Returns `size` bytes from `position`, fewer at the end of the input, and none outside it. The view is valid
    /// until the next call. Throws `CReadFailure`.
    std::string_view At(std::int64_t position, std::size_t size) {
        if (position < 0 || position >= m_size) return {};
        size = static_cast<std::size_t>(std::min(m_size - position, static_cast<std::int64_t>(size)));
        if (position < m_begin || position + static_cast<std::int64_t>(size) > End()) Fill(position, size);
        return std::string_view(m_block).substr(static_cast<std::size_t>(position - m_begin), size);
    }

 private:
    static constexpr std::size_t kFirstBlock = std::size_t{4} << 10;
    static constexpr std::size_t kMostBlock = std::size_t{1} << 20;

    std::int64_t End() const { return m_begin + static_cast<std::int64_t>(m_block.size()); }

    void Fill(std::int64_t position, std::size_t size) {
        const bool goesOn = position >= m_begin && position <= End();
        m_next = goesOn ? std::min(2 * m_next, kMostBlock) : kFirstBlock;
        const auto left = static_cast<std::size_t>(m_size - position);
        const std::size_t kept = goesOn ? static_cast<std::size_t>(End() - position) : 0;
        m_block.erase(0, m_block.size() - kept);
        m_block.resize(std::min(left, std::max(size, m_next)));
        m_begin = position;
        const std::size_t end = kept + ReadAt(kept);
        if (end >= m_block.size()) return;
        m_block.clear();
        throw CReadFailure(position + static_cast<std::int64_t>(end));
    }

    /// Reads what belongs after the first bytes of the block. Returns the number of bytes read.
    std::size_t ReadAt(std::size_t first) {
        const auto to = std::as_writable_bytes(std::span(m_block)).subspan(first);
        return m_input.ReadUpTo(m_begin + static_cast<std::int64_t>(first), to);
    }

    const CInput& m_input;
    std::int64_t m_size;
    std::int64_t m_begin = 0;
    std::size_t m_next = kFirstBlock;
    std::string m_block;
};

}  // namespace vxfileio::recovery
