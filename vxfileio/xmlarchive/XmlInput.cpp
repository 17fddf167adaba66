#include "vxfileio/xmlarchive/XmlInput.h"

#include <algorithm>

namespace gd_xml_stream {

/// Reads one block behind what is left of the one before. Returns false if nothing more comes.
bool XmlInput::ReadBlock() {
    if (m_ended) return false;
    m_buffer.resize(kMostAhead + m_blockSize);
    const auto begin = m_buffer.begin();
    std::copy(begin + static_cast<std::ptrdiff_t>(m_cursor), begin + static_cast<std::ptrdiff_t>(m_size), begin);
    m_size -= m_cursor;
    m_cursor = 0;

    std::size_t read = 0;
    m_file->Read(m_buffer.data() + m_size, m_blockSize, read);
    const std::size_t whole = std::string_view(m_buffer.data() + m_size, read).find('\0');
    m_endsInNul = whole != std::string_view::npos;
    m_ended = m_endsInNul || read < m_blockSize;
    m_read += read;
    read = std::min(read, whole);
    m_size += read;
    return read > 0;
}

std::size_t XmlInput::Remaining() const {
    const std::size_t inMemory = m_size - m_cursor;
    if (m_ended) return inMemory;
    const auto fileSize = static_cast<std::size_t>(m_file->Size());
    return inMemory + fileSize - std::min(fileSize, m_read);
}

bool XmlInput::StandsOn(std::string_view text) {
    while (m_size - m_cursor < text.size()) {
        if (!ReadBlock()) return false;
    }
    return std::string_view(m_buffer.data() + m_cursor, text.size()) == text;
}

bool XmlInput::SkipTo(char wanted) {
    while (!AtEnd()) {
        const std::string_view rest = Rest();
        const std::size_t place = rest.find(wanted);
        Pass(std::min(place, rest.size()));
        if (place != std::string_view::npos) return true;
    }
    return false;
}

void XmlInput::SkipWhile(unsigned classes) {
    while (!AtEnd()) {
        while (m_cursor < m_size && Is(m_buffer[m_cursor], classes))
            ++m_cursor;
        if (m_cursor < m_size) return;
    }
}

void XmlInput::TakeWhile(unsigned classes, std::string& taken) {
    while (!AtEnd()) {
        const std::size_t start = m_cursor;
        while (m_cursor < m_size && Is(m_buffer[m_cursor], classes))
            ++m_cursor;
        taken.append(m_buffer.data() + start, m_cursor - start);
        if (m_cursor < m_size) return;
    }
}

}  // namespace gd_xml_stream
