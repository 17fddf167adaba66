#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "vxfileio/xmlarchive/FileBuffer.h"

namespace gd_xml_stream {

/// Classes of bytes for the scanner. A byte can belong to several classes.
///
/// Bytes are signed here, so those from 0x80 up are less than a blank: they are skipped between tags, and they end a
/// name. Only within text are they characters.
enum CharClass : std::uint8_t {
    kBlank = 1,       ///< At most a blank, as a signed number.
    kTextBlank = 2,   ///< At most a blank, as an unsigned number.
    kName = 4,        ///< Belongs to the name in a start tag: "-" and all from "0" up but ">".
    kEndName = 8,     ///< Belongs to the name in an end tag: neither blank nor ">".
    kOpen = 16,       ///< The "<".
    kText = 32,       ///< Neither "<" nor ">".
    kPlainName = 64,  ///< Belongs to the name in a start tag, and isn't "<".
};

inline constexpr std::array<std::uint8_t, 256> kCharClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (int byte = 0; byte < 256; ++byte) {
        const bool blank = byte <= ' ' || byte >= 0x80;
        const bool name = byte == '-' || (byte >= '0' && byte < 0x80 && byte != '>');
        classes[static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(
            (blank ? kBlank : 0) | (byte <= ' ' ? kTextBlank : 0) | (name ? kName : 0) |
            (!blank && byte != '>' ? kEndName : 0) | (byte == '<' ? kOpen : 0) |
            (byte != '<' && byte != '>' ? kText : 0) | (name && byte != '<' ? kPlainName : 0));
    }
    return classes;
}();

/// Returns whether a byte belongs to one of the classes in `wanted`.
inline bool Is(char c, unsigned wanted) { return (kCharClasses[static_cast<unsigned char>(c)] & wanted) != 0; }

/// Returns the number of bytes at the front of `text` that belong to these classes.
inline std::size_t RunOf(std::string_view text, unsigned wanted) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), [wanted](char c) { return Is(c, wanted); });
    return static_cast<std::size_t>(end - text.begin());
}

/// The document of a scanner: bytes with a cursor, up to the end of the file or the first NUL. One block is in memory
/// at a time; callers don't notice where a block ends.
///
/// The bytes of an element are gathered in place, and moved only to close gaps. They stay in memory until the next
/// element begins, even if they span several blocks.
class XmlInput {
 public:
    /// Reads nothing yet. `file` may be null, which is an empty document; it isn't owned.
    XmlInput(CFileBuffer* file, std::size_t blockSize)
        : m_file(file), m_blockSize(blockSize), m_ended(file == nullptr) {}

    /// Returns whether no byte is left.
    bool AtEnd() { return m_cursor == m_size && !ReadBlock(); }

    /// Returns whether the document ended with a NUL rather than with its file. Requires: `AtEnd`.
    bool EndsInNul() const { return m_endsInNul; }

    /// Returns whether reading ended although the file has more bytes, since the system refused to deliver them.
    bool IsReadFailed() const { return m_file != nullptr && m_ended && !m_endsInNul && m_file->IsReadFailed(); }

    /// Returns the most bytes that can follow the cursor, by the size of the file at the first call; the exact number
    /// once the end is in memory.
    std::size_t Remaining();

    /// Returns the offset of the cursor in the document.
    std::uint64_t Offset() const { return m_read - (m_size - m_cursor); }

    /// Returns whether `count` bytes follow the cursor. They are then in memory.
    bool Has(std::size_t count) {
        while (m_size - m_cursor < count) {
            if (!ReadBlock()) return false;
        }
        return true;
    }

    /// Returns the byte at the cursor; NUL at the end.
    char Peek() { return AtEnd() ? '\0' : m_buffer[m_cursor]; }

    /// Returns the bytes in memory from the cursor on, at least one before the end of the document. Valid until the
    /// next operation other than `Pass`.
    std::string_view Rest() {
        if (AtEnd()) return {};
        return {m_buffer.data() + m_cursor, m_size - m_cursor};
    }

    /// Moves the cursor over bytes that `Rest` or `StandsOn` has shown.
    void Pass(std::size_t count) { m_cursor += count; }

    /// Forgets what was gathered.
    void ForgetGathered() { m_gathered = m_gatheredEnd = m_cursor; }

    /// Passes bytes as `Pass` does, and appends them to the gathered ones.
    void Gather(std::size_t count) {
        if (m_gathered == m_gatheredEnd) ForgetGathered();
        if (m_gatheredEnd < m_cursor) std::memmove(m_buffer.data() + m_gatheredEnd, m_buffer.data() + m_cursor, count);
        m_gatheredEnd += count;
        Pass(count);
    }

    /// Moves the cursor back by one byte. Nothing may be gathered afterwards.
    void StepBack() { --m_cursor; }

    /// Returns the gathered bytes. Valid until the next operation.
    std::string_view Gathered() const { return {m_buffer.data() + m_gathered, m_gatheredEnd - m_gathered}; }

    /// Returns their offset in the document. Requires: they were gathered within one block.
    std::uint64_t GatheredOffset() const { return m_read - (m_size - m_gathered); }

    /// Returns whether `text` is at the cursor.
    bool StandsOn(std::string_view text) {
        return Has(text.size()) && std::string_view(m_buffer.data() + m_cursor, text.size()) == text;
    }

    /// Moves to the next `wanted` byte. Moves to the end and returns false if there is none.
    bool SkipTo(char wanted) {
        while (!AtEnd()) {
            if (m_buffer[m_cursor] == wanted) return true;
            const std::string_view rest = Rest();
            Pass(std::min(rest.find(wanted), rest.size()));
        }
        return false;
    }

    /// Moves to the next occurrence of `text`. Moves to the end and returns false if there is none.
    bool SkipToText(std::string_view text) {
        return GoToText(text, [this](std::size_t count) { Pass(count); });
    }

    /// The same, and gathers the bytes before it.
    bool GatherToText(std::string_view text) {
        return GoToText(text, [this](std::size_t count) { Gather(count); });
    }

    /// Moves over all bytes of these classes.
    void SkipWhile(unsigned classes) {
        while (!AtEnd() && Is(m_buffer[m_cursor], classes))
            ++m_cursor;
    }

    /// Gathers all bytes of these classes.
    void GatherWhile(unsigned classes) {
        while (!AtEnd()) {
            Gather(RunOf(Rest(), classes));
            if (m_cursor < m_size) return;
        }
    }

 private:
    bool ReadBlock();
    void MoveToFront();

    /// Moves to the next occurrence of `text`, and passes the bytes before it with `pass(count)`.
    template <class PassBytes>
    bool GoToText(std::string_view text, PassBytes pass) {
        while (!AtEnd()) {
            const std::string_view rest = Rest();
            const std::size_t start = rest.find(text.front());
            pass(std::min(start, rest.size()));
            if (start == std::string_view::npos) continue;
            if (StandsOn(text)) return true;
            pass(1);
        }
        return false;
    }

    CFileBuffer* m_file;
    std::size_t m_blockSize;
    std::vector<char> m_buffer;     ///< The gathered bytes, then the rest of the block.
    std::size_t m_gathered = 0;     ///< The beginning of the gathered bytes,
    std::size_t m_gatheredEnd = 0;  ///< and their end.
    std::size_t m_cursor = 0;
    std::size_t m_size = 0;                 ///< Bytes in `m_buffer`.
    std::size_t m_read = 0;                 ///< Bytes of the document that were read.
    std::optional<std::size_t> m_fileSize;  ///< Queried once for all lists.
    bool m_ended;                           ///< Nothing follows what is in memory.
    bool m_endsInNul = false;
};

}  // namespace gd_xml_stream
