#include "vxfileio/helpers/File.h"

namespace vxfileio::helpers {

std::string CFileFailure::Text(const std::string& path) const {
    static constexpr const char* kSteps[] = {"opening ",   "writing ",  "closing ",
                                             "replacing ", "flushing ", "flushing the folder of "};
    if (!error) return {};
    // The condition has the same words on every system.
    std::string text = error.default_error_condition().message() + ", " + kSteps[static_cast<std::size_t>(step)];
    if (step == enStep::Writing) text += std::to_string(bytes) + " bytes at " + std::to_string(position) + " of ";
    return text + NativePath(path);
}

CFile::~CFile() { Close(); }

bool CFile::Close() {
    if (!IsOpen()) return true;
    const std::error_code error = CloseHandle();
    m_handle = kClosed;
    return Keep({error, CFileFailure::enStep::Closing});
}

bool CFile::WriteAt(std::int64_t position, std::initializer_list<CBytes> buffers) {
    const std::error_code error = WriteAll(position, buffers);
    if (!error) return true;
    std::size_t bytes = 0;
    for (const CBytes& buffer : buffers)
        bytes += buffer.size();
    return Keep({error, CFileFailure::enStep::Writing, bytes, position});
}

bool CFile::Append(std::initializer_list<CBytes> buffers) {
    if (!WriteAt(m_end, buffers)) {
        // If truncating fails, bytes remain after the end that nothing points to; the next Append overwrites them.
        Truncate(m_end);
        return false;
    }
    for (const CBytes& buffer : buffers)
        m_end += static_cast<std::int64_t>(buffer.size());
    return true;
}

bool CFile::FlushToDisk() noexcept {
    if (!IsOpen()) return false;
    const std::error_code error = FlushHandle();
    m_isFlushLost = m_isFlushLost || error;
    return Keep({error, CFileFailure::enStep::Flushing}) && !m_isFlushLost;
}

bool CFile::FlushFolder() noexcept {
    return Keep({helpers::FlushFolder(m_folder), CFileFailure::enStep::FlushingFolder});
}

/// Makes ready for a file that is opened by this path.
void CFile::Begin(const std::string& path) {
    Close();
    m_path = path;
    m_failure = {};
    m_end = 0;
    m_isFlushLost = false;
}

/// Keeps a failure, if it is one and the first. Returns whether all went well this time.
bool CFile::Keep(CFileFailure failure) noexcept {
    if (failure && !m_failure) m_failure = failure;
    return !failure;
}

}  // namespace vxfileio::helpers
