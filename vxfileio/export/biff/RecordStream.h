#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>

#include "vxfileio/export/biff/Record.h"

/// @file
/// The two ends that a row of records can be put into: one counts the bytes, the other holds them. Whoever puts records
/// is written once for both, so that the room a stream needs is known to the byte before its first record is stored.

namespace YExcel {

/// Counts the bytes of a stream.
class StreamSize {
 public:
    /// Bytes so far: where the next record begins.
    std::size_t Position() const { return m_size; }
    void Put(const Record auto& record) { m_size += RecordSize(record); }
    /// Another record in place of one of the same size changes nothing.
    void Replace(std::size_t /*position*/, const Record auto& /*record*/) const {}

 private:
    std::size_t m_size = 0;
};

/// The bytes of a stream in memory.
class RecordStream {
 public:
    /// Makes room for so many bytes. More may come; that costs a copy of all that stands.
    explicit RecordStream(std::size_t capacity = 0) : m_capacity(capacity) {
        if (capacity != 0) m_bytes = std::make_unique_for_overwrite<std::byte[]>(capacity);
    }

    /// Bytes so far: where the next record begins.
    std::size_t Position() const { return m_size; }

    /// Appends a record.
    void Put(const Record auto& record) {
        const std::size_t size = RecordSize(record);
        if (size > m_capacity - m_size) Grow(size);
        Write(record, m_bytes.get() + m_size);
        m_size += size;
    }

    /// Stores a record over the one that begins at `position` and has the same size.
    void Replace(std::size_t position, const Record auto& record) { Write(record, m_bytes.get() + position); }

    /// The whole stream, valid until the next change.
    std::span<const std::byte> Bytes() const { return {m_bytes.get(), m_size}; }

 private:
    void Grow(std::size_t size) {
        m_capacity = std::max(2 * m_capacity, m_size + size);
        auto bytes = std::make_unique_for_overwrite<std::byte[]>(m_capacity);
        std::copy_n(m_bytes.get(), m_size, bytes.get());
        m_bytes = std::move(bytes);
    }

    std::unique_ptr<std::byte[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_capacity;
};

}  // namespace YExcel
