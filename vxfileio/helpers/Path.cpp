#include "vxfileio/helpers/Path.h"

#include <string_view>

namespace vxfileio::helpers {

namespace {

std::string_view Unquoted(std::string_view path) {
    const bool quoted = path.size() >= 2 && path.front() == '"' && path.back() == '"';
    return quoted ? path.substr(1, path.size() - 2) : path;
}

/// Removes the first `count` characters from `rest` and returns them.
std::string Take(std::string_view& rest, std::size_t count) {
    std::string taken(rest.substr(0, count));
    rest.remove_prefix(taken.size());
    return taken;
}

}  // namespace

CPath::CPath(const char* path, bool /*folder*/, bool /*arguments*/) : m_path(path) {
    std::string_view rest = Unquoted(m_path.Text());
    if (rest.size() >= 2 && rest[1] == ':') m_drive = Take(rest, 2);
    m_directory = Take(rest, rest.find_last_of("/\\") + 1);  // without a separator this takes nothing
    m_directory.Replace('/', '\\');
    m_title = Take(rest, rest.find_last_of('.'));
    if (!m_title.Text().empty() && !rest.empty()) m_extension = std::string(rest.substr(1));
}

CStdStr CPath::GetDriveDirectory() const {
    CStdStr place = m_drive;
    place += m_directory;
    return place;
}

CStdStr CPath::GetTitle() const { return m_title; }

CStdStr CPath::GetExtension() const {
    if (m_extension.Text().empty()) return {};
    CStdStr extension(".");
    extension += m_extension;
    return extension;
}

}  // namespace vxfileio::helpers
