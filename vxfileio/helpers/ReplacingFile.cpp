#include "vxfileio/helpers/ReplacingFile.h"

#include <algorithm>
#include <array>
#include <memory>

namespace vxfileio::helpers {

namespace {

/// What one system call copies.
constexpr std::size_t kPiece = std::size_t{64} << 10;

/// How many names are tried for the file beside.
constexpr int kMostNames = 100;

/// Tells whether an error is the folder's answer, that of a disk which is well.
bool IsRefusal(const std::error_code& error) {
    static constexpr std::errc kRefusals[] = {
        std::errc::permission_denied, std::errc::operation_not_permitted, std::errc::read_only_file_system,
        std::errc::filename_too_long, std::errc::device_or_resource_busy, std::errc::cross_device_link,
        std::errc::file_exists};
    return std::any_of(std::begin(kRefusals), std::end(kRefusals), [&](std::errc one) { return error == one; });
}

}  // namespace

bool CReplacingFile::Create(const std::string& path) {
    Discard();
    m_path = path;
    m_failure = {};
    CFile old;
    const bool isThere = old.OpenForWriting(path);
    if (!isThere && old.Failure().error != std::errc::no_such_file_or_directory) {
        m_failure = old.Failure();
        return false;
    }
    m_place = old.PlaceOf(path);
    if (m_place.empty()) return m_file.Create(path);
    if (CreateBeside(old)) return true;
    // A disk without room for a second file has none for the new content either: the old one is better left alone.
    return isThere && !IsRefusal(m_file.Failure().error) ? true : m_file.Create(path);
}

bool CReplacingFile::CreateBeside(const CFile& old) {
    const std::string folder = m_place.substr(0, m_place.find_last_of("/\\:") + 1);
    const std::string start = folder + ".vxfileio-" + std::to_string(ProcessNumber()) + "-";
    for (int i = 0; i < kMostNames; ++i) {
        std::string name = start + std::to_string(i) + ".new";
        if (m_file.CreateLike(name, old)) {
            m_beside = std::move(name);
            return true;
        }
        if (m_file.Failure().error != std::errc::file_exists) break;
    }
    return false;
}

bool CReplacingFile::Commit() {
    m_file.Close();
    const bool isWhole = !Failure();
    const bool isThere = isWhole && (m_beside.empty() || Move());
    Discard();
    return isThere;
}

bool CReplacingFile::Move() {
    const std::error_code error = MoveOver(m_beside, m_place);
    if (!error) {
        m_beside.clear();
        return true;
    }
    if (IsRefusal(error)) return CopyOver();
    m_failure = {error, CFileFailure::enStep::Replacing};
    return false;
}

/// Writes the content of the file beside over the old one, which can be written but not replaced.
bool CReplacingFile::CopyOver() {
    const auto piece = std::make_unique<std::array<std::byte, kPiece>>();
    CFile beside;
    if (!beside.OpenForReading(m_beside)) {
        m_failure = beside.Failure();
        return false;
    }
    const std::int64_t size = beside.Size();
    if (!m_file.Create(m_path)) return false;
    std::size_t moved = 0;
    do {
        moved = beside.ReadUpTo(m_file.End(), {*piece});
    } while (moved > 0 && m_file.Append({CBytes(*piece).first(moved)}));
    if (m_file.End() != size && !Failure())
        m_failure = {std::make_error_code(std::errc::io_error), CFileFailure::enStep::Replacing};
    return m_file.Close() && !Failure();
}

void CReplacingFile::Discard() {
    m_file.Close();
    if (!m_beside.empty()) RemoveFile(m_beside);
    m_beside.clear();
}

}  // namespace vxfileio::helpers
