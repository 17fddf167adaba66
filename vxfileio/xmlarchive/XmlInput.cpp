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

std::size_t XmlInput::Remaining() {
    const std::size_t inMemory = m_size - m_cursor;
    if (m_ended) return inMemory;
    if (!m_fileSize) m_fileSize = static_cast<std::size_t>(m_file->Size());
    return inMemory + *m_fileSize - std::min(*m_fileSize, m_read);
}

}  // namespace gd_xml_stream
