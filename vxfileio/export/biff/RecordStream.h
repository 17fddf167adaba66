#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "vxfileio/export/biff/Record.h"
#include "vxfileio/helpers/LittleEndian.h"

/// @file
/// Two outputs for records: one counts the bytes, the other stores them. Code that stores records is a template for
/// both, so the exact size of a stream is known before its first record is stored.

namespace YExcel {

using vxfileio::helpers::CFieldStore;

/// Counts the bytes of a stream.
class CStreamSize {
 public:
    /// The number of bytes so far, which is the offset of the next record.
    std::size_t Position() const { return m_size; }
    void Put(const Record auto& record) { m_size += RecordSize(record); }

 private:
    std::size_t m_size = 0;
};

/// Stores the bytes of a stream and passes them on in pieces. The pieces share one buffer, so the whole stream is never
/// in memory.
class CRecordStream {
 public:
    /// The size of every piece except the last one.
    static constexpr std::size_t kPieceSize = std::size_t{64} * 1024;

    /// Receives a piece. The bytes are valid until it returns.
    using Take = std::function<void(std::span<const std::byte> piece)>;

    explicit CRecordStream(Take take) : m_take(std::move(take)) {}

    /// The number of bytes so far, which is the offset of the next record.
    std::size_t Position() const { return m_handedOn + Waiting(); }

    /// Appends a record.
    template <Record Type>
    void Put(const Type& record) {
        const std::size_t dataSize = DataSize(record);
        if (dataSize <= kMostBody) {
            CFieldStore store(m_end);
            store(Type::kCode, static_cast<std::uint16_t>(dataSize));
            Type::Fields(record, store);
            m_end = store.End();
        } else {
            LongBody records(*this);
            CContinuedBody body(records, Type::kCode);
            Type::Fields(record, body);
        }
        HandOnWholePiece();
    }

    /// Passes on the bytes after the last whole piece, if any.
    void Finish() {
        if (m_end != m_buffer.get()) HandOn(Waiting());
    }

 private:
    /// The records of a body that is too long for one record.
    class LongBody {
     public:
        explicit LongBody(CRecordStream& stream) : m_stream(stream) {}

        void Begin(std::uint16_t code) {
            m_stream.HandOnWholePiece();
            m_length = 0;
            CFieldStore store(m_stream.m_end);
            store(code, m_length);
            m_stream.m_end = store.End();
        }
        void Bytes(std::span<const std::byte> bytes) {
            std::byte* const lengthField = m_stream.m_end - m_length - sizeof(m_length);
            m_length = static_cast<std::uint16_t>(m_length + bytes.size());
            vxfileio::helpers::StoreLE16(lengthField, m_length);
            m_stream.m_end = std::copy(bytes.begin(), bytes.end(), m_stream.m_end);
        }

     private:
        CRecordStream& m_stream;
        std::uint16_t m_length = 0;  ///< The length of the current record's body so far.
    };

    std::size_t Waiting() const { return static_cast<std::size_t>(m_end - m_buffer.get()); }

    /// Leaves less than a piece waiting, so that there is room for a record.
    void HandOnWholePiece() {
        if (Waiting() >= kPieceSize) HandOn(kPieceSize);
    }

    void HandOn(std::size_t size) {
        m_take({m_buffer.get(), size});
        m_handedOn += size;
        m_end = std::copy(m_buffer.get() + size, m_end, m_buffer.get());
    }

    Take m_take;
    std::size_t m_handedOn = 0;
    /// Has room for a piece and for the record that exceeds it.
    std::unique_ptr<std::byte[]> m_buffer =
        std::make_unique_for_overwrite<std::byte[]>(kPieceSize + kHeaderSize + kMostBody);
    std::byte* m_end = m_buffer.get();  ///< The end of the bytes that wait to be passed on.
};

/// Returns the bytes of a single record.
std::vector<std::byte> RecordBytes(const Record auto& record) {
    std::vector<std::byte> bytes;
    CRecordStream stream([&](auto piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    stream.Put(record);
    stream.Finish();
    return bytes;
}

}  // namespace YExcel
