#include "vxfileio/xmlarchive/XmlInput.h"

#include <utility>

namespace gd_xml_stream {

/// Closes the gaps before and after the gathered bytes. Of a long element, moves only the new bytes.
void XmlInput::MoveToFront() {
    if (m_gathered == m_gatheredEnd) ForgetGathered();
    const auto at = [this](std::size_t place) { return m_buffer.begin() + static_cast<std::ptrdiff_t>(place); };
    if (m_gathered > 0) std::copy(at(m_gathered), at(m_gatheredEnd), at(0));
    m_gatheredEnd -= std::exchange(m_gathered, 0);
    if (m_gatheredEnd < m_cursor) std::copy(at(m_cursor), at(m_size), at(m_gatheredEnd));
    m_size -= m_cursor - m_gatheredEnd;
    m_cursor = m_gatheredEnd;
}

/// Appends one block to the rest of the last one. Returns false at the end of the file.
bool XmlInput::ReadBlock() {
    if (m_ended) return false;
    MoveToFront();
    if (m_buffer.size() < m_size + m_blockSize) m_buffer.resize(m_size + m_blockSize);

    std::size_t read = 0;
    m_file->Read(m_buffer.data() + m_size, m_blockSize, read);
    const std::size_t whole = std::string_view(m_buffer.data() + m_size, read).find('\0');
    m_endsInNul = whole != std::string_view::npos;
    m_ended = m_endsInNul || read < m_blockSize;
    read = std::min(read, whole);
    m_read += read;
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
