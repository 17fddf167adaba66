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

/// What a byte may be to the scanner; a byte can belong to several classes.
///
/// Bytes count as signed here, so those from 0x80 up lie below the blank: between tags they are passed over, and they
/// end a name. Only inside text do they stand for themselves.
enum CharClass : std::uint8_t {
    kBlank = 1,      ///< At most a blank, as a signed number.
    kTextBlank = 2,  ///< At most a blank, as an unsigned number.
    kName = 4,       ///< Belongs to the name in a start tag: "-" and all from "0" up but ">".
    kEndName = 8,    ///< Belongs to the name in an end tag: neither blank nor ">".
    kOpen = 16,      ///< "<" itself.
    kText = 32,      ///< Neither "<" nor ">".
};

inline constexpr std::array<std::uint8_t, 256> kCharClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (int byte = 0; byte < 256; ++byte) {
        const bool blank = byte <= ' ' || byte >= 0x80;
        const bool name = byte == '-' || (byte >= '0' && byte < 0x80 && byte != '>');
        classes[static_cast<std::size_t>(byte)] =
            static_cast<std::uint8_t>((blank ? kBlank : 0) | (byte <= ' ' ? kTextBlank : 0) | (name ? kName : 0) |
                                      (!blank && byte != '>' ? kEndName : 0) | (byte == '<' ? kOpen : 0) |
                                      (byte != '<' && byte != '>' ? kText : 0));
    }
    return classes;
}();

/// Tells whether a byte belongs to one of the classes in `wanted`.
inline bool Is(char c, unsigned wanted) { return (kCharClasses[static_cast<unsigned char>(c)] & wanted) != 0; }

/// Returns how many bytes at the front of `text` belong to these classes.
inline std::size_t RunOf(std::string_view text, unsigned wanted) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), [wanted](char c) { return Is(c, wanted); });
    return static_cast<std::size_t>(end - text.begin());
}

/// A document as the scanner sees it: bytes up to the end of the file or its first NUL, whichever comes first, with a
/// cursor. One block of it is in memory at a time, and no caller can tell where a block ends.
///
/// What the scanner wants of an element is gathered where it stands in memory, and only moved where something between
/// is left out. It stays there until the next is begun, however many blocks it reaches over.
class XmlInput {
 public:
    /// Reads nothing yet. `file` may be null, which is an empty document; it isn't owned.
    XmlInput(CFileBuffer* file, std::size_t blockSize)
        : m_file(file), m_blockSize(blockSize), m_ended(file == nullptr) {}

    /// Whether no byte is left.
    bool AtEnd() { return m_cursor == m_size && !ReadBlock(); }

    /// Whether the document ended in a NUL, rather than with its file. Told only once `AtEnd` holds.
    bool EndsInNul() const { return m_endsInNul; }

    /// How many bytes the document can have behind the cursor, by the size that its file had when this was first asked;
    /// exactly so many once its end is in memory.
    std::size_t Remaining();

    /// The byte at the cursor; NUL at the end.
    char Peek() { return AtEnd() ? '\0' : m_buffer[m_cursor]; }

    /// What is in memory from the cursor on, at least one byte unless the document is at its end. It lives until the
    /// next operation other than `Pass`.
    std::string_view Rest() {
        if (AtEnd()) return {};
        return {m_buffer.data() + m_cursor, m_size - m_cursor};
    }

    /// Moves the cursor over bytes that `Rest` or `StandsOn` showed.
    void Pass(std::size_t count) { m_cursor += count; }

    /// Forgets what was gathered.
    void ForgetGathered() { m_gathered = m_gatheredEnd = m_cursor; }

    /// Passes bytes as `Pass` does, and puts them behind what was gathered so far.
    void Gather(std::size_t count) {
        if (m_gathered == m_gatheredEnd) ForgetGathered();
        if (m_gatheredEnd < m_cursor) std::memmove(m_buffer.data() + m_gatheredEnd, m_buffer.data() + m_cursor, count);
        m_gatheredEnd += count;
        Pass(count);
    }

    /// Moves the cursor back to the byte that was passed last. Nothing more is gathered then.
    void StepBack() { --m_cursor; }

    /// What was gathered; it lives until the next operation.
    std::string_view Gathered() const { return {m_buffer.data() + m_gathered, m_gatheredEnd - m_gathered}; }

    /// Whether `text` stands at the cursor.
    bool StandsOn(std::string_view text) {
        while (m_size - m_cursor < text.size()) {
            if (!ReadBlock()) return false;
        }
        return std::string_view(m_buffer.data() + m_cursor, text.size()) == text;
    }

    /// Moves to the next `wanted` byte. Returns false, at the end, if there is none.
    bool SkipTo(char wanted) {
        while (!AtEnd()) {
            if (m_buffer[m_cursor] == wanted) return true;
            const std::string_view rest = Rest();
            Pass(std::min(rest.find(wanted), rest.size()));
        }
        return false;
    }

    /// Moves to the next place where `text` stands. Returns false, at the end, if there is none.
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

    /// Moves to the next place where `text` stands, over the bytes before it by `pass(count)`.
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
    std::vector<char> m_buffer;     ///< What was gathered, and behind it the rest of the block.
    std::size_t m_gathered = 0;     ///< Where what was gathered begins,
    std::size_t m_gatheredEnd = 0;  ///< and where it ends.
    std::size_t m_cursor = 0;
    std::size_t m_size = 0;                 ///< Bytes in `m_buffer`.
    std::size_t m_read = 0;                 ///< Bytes of the file that were read.
    std::optional<std::size_t> m_fileSize;  ///< Asked of the system once, however many lists want to know.
    bool m_ended;                           ///< Nothing follows what is in memory.
    bool m_endsInNul = false;
};

}  // namespace gd_xml_stream
