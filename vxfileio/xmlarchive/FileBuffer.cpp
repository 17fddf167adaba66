#include "vxfileio/xmlarchive/FileBuffer.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "vxfileio/helpers/ReplacingFile.h"

namespace gd_xml_stream {

namespace {

/// Bytes per system call. Pieces of twice the size save at most 1 % of the time.
constexpr std::size_t kGathered = std::size_t{32} << 10;

}  // namespace

struct CFileBuffer::CState {
    vxfileio::helpers::CReplacingFile replacing;
    vxfileio::helpers::CFile& file = replacing.File();
    bool writes = false;
    bool refused = false;  ///< A write failed: what follows is dropped, so that the file is a beginning without gaps.
    std::unique_ptr<std::byte[]> gathered = std::make_unique_for_overwrite<std::byte[]>(kGathered);
    std::size_t begin = 0;  ///< Reading: the first byte that wasn't handed on yet.
    std::size_t end = 0;    ///< Behind the last byte that is in `gathered`.
    std::int64_t next = 0;  ///< Reading: where the file goes on.

    void Append(std::span<const std::byte> bytes) { refused = refused || !file.Append({bytes}); }

    bool Fill() {
        begin = 0;
        end = file.ReadUpTo(next, {gathered.get(), kGathered});
        next += static_cast<std::int64_t>(end);
        return end > 0;
    }
};

CFileBuffer::CFileBuffer() = default;
CFileBuffer::~CFileBuffer() { Close(); }

int CFileBuffer::Open(const std::string& path, const std::string& mode, char* errorText, std::size_t errorTextSize) {
    Close();
    auto state = std::make_unique<CState>();
    state->writes = mode.starts_with('w');
    if (state->writes ? state->file.Create(path) : state->file.OpenForReading(path)) {
        m_state = std::move(state);
        return 0;
    }
    const std::error_condition error = state->file.Failure().error.default_error_condition();
    if (errorText != nullptr && errorTextSize > 0) {
        const std::string text = error.message();
        errorText[text.copy(errorText, errorTextSize - 1)] = '\0';
    }
    return error.value();
}

std::string CFileBuffer::OpenReplacing(const std::string& path) {
    Close();
    auto state = std::make_unique<CState>();
    state->writes = true;
    if (!state->replacing.Create(path)) return state->replacing.WriteError();
    m_state = std::move(state);
    return {};
}

std::string CFileBuffer::Commit() {
    if (!m_state) return {};
    Flush();
    const std::unique_ptr<CState> state = std::move(m_state);
    return state->replacing.Commit() ? std::string() : state->replacing.WriteError();
}

void CFileBuffer::Close() {
    Flush();
    m_state.reset();
}

std::size_t CFileBuffer::Write(const void* bytes, std::size_t count) {
    if (!m_state || !m_state->writes) return 0;
    const std::span rest(static_cast<const std::byte*>(bytes), count);
    if (count > kGathered - m_state->end) Flush();
    if (count > kGathered) {
        m_state->Append(rest);
    } else {
        std::copy(rest.begin(), rest.end(), &m_state->gathered[m_state->end]);
        m_state->end += count;
    }
    return count;
}

void CFileBuffer::Flush() {
    if (!m_state || !m_state->writes || m_state->end == 0) return;
    m_state->Append({m_state->gathered.get(), m_state->end});
    m_state->end = 0;
}

std::size_t CFileBuffer::Read(void* buffer, std::size_t count, std::size_t& read) {
    read = 0;
    if (!m_state || m_state->writes) return 0;
    while (read < count && (m_state->begin < m_state->end || m_state->Fill())) {
        const std::size_t piece = std::min(count - read, m_state->end - m_state->begin);
        std::memcpy(static_cast<std::byte*>(buffer) + read, &m_state->gathered[m_state->begin], piece);
        m_state->begin += piece;
        read += piece;
    }
    return read;
}

bool CFileBuffer::IsReadFailed() const { return m_state && !m_state->writes && m_state->next < m_state->file.Size(); }

std::int64_t CFileBuffer::Size() const { return m_state ? m_state->file.Size() : 0; }

}  // namespace gd_xml_stream
