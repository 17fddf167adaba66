#include "vxfileio/helpers/ReplacingFile.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace vxfileio::helpers {

namespace {

/// Bytes copied per system call.
constexpr std::size_t kPiece = std::size_t{64} << 10;

/// The number of names to try for the temporary file.
constexpr int kMostNames = 100;

/// Names may have 255 bytes; longer ones are cut to leave room for ".part" and a number.
constexpr std::size_t kMostStem = 240;

/// Returns whether an error is the folder's answer rather than a fault of the disk.
bool IsRefusal(const std::error_code& error) {
    static constexpr std::errc kRefusals[] = {
        std::errc::permission_denied, std::errc::operation_not_permitted, std::errc::read_only_file_system,
        std::errc::filename_too_long, std::errc::device_or_resource_busy, std::errc::cross_device_link,
        std::errc::file_exists};
    return std::any_of(std::begin(kRefusals), std::end(kRefusals), [&](std::errc one) { return error == one; });
}

/// Calls `make(name)` with names for a temporary file until one isn't taken. Returns the error, and the name on
/// success.
std::error_code MakeBeside(const std::string& place, std::string& name, auto make) {
    const std::size_t folder = place.find_last_of("/\\:") + 1;
    const std::string stem = place.substr(0, folder + kMostStem) + ".part";
    std::error_code error = std::make_error_code(std::errc::file_exists);
    for (int i = 1; error == std::errc::file_exists && i <= kMostNames; ++i) {
        std::string candidate = stem + std::to_string(i);
        error = make(candidate);
        if (!error) name = std::move(candidate);
    }
    return error;
}

/// Moves a file to a name that must be unused.
std::error_code MoveToFree(const std::string& from, const std::string& to) {
    CFile reserved;
    if (!reserved.CreateLike(to, CFile())) return reserved.Failure().error;
    reserved.Close();
    const std::error_code error = MoveOver(from, to);
    if (error) RemoveFile(to);
    return error;
}

/// Returns whether a file system without hard links refused one.
bool HasNoLinks(const std::error_code& error) {
    return error && error != std::errc::file_exists && error != std::errc::no_such_file_or_directory;
}

/// Gives a file a second name, which must be unused. Without hard links, renames the file instead.
std::error_code KeepAs(const std::string& file, const std::string& name) {
    const std::error_code error = LinkFile(file, name);
    return HasNoLinks(error) ? MoveToFree(file, name) : error;
}

/// Moves a file to a name that must be unused. The name never belongs to an incomplete file.
std::error_code MoveWholeToFree(const std::string& from, const std::string& to) {
    const std::error_code error = LinkFile(from, to);
    if (!error) RemoveFile(from);
    return HasNoLinks(error) ? MoveToFree(from, to) : error;
}

}  // namespace

bool CReplacingFile::Create(const std::string& path, ERule rule) {
    Discard();
    m_path = path;
    m_rule = rule;
    m_failure = {};
    CFile old;
    const bool isThere = old.OpenForWriting(path);
    if (!isThere && old.Failure().error != std::errc::no_such_file_or_directory) {
        m_failure = old.Failure();
        return false;
    }
    if (isThere && rule == ERule::New) return Fail(std::make_error_code(std::errc::file_exists));
    m_place = old.PlaceOf(path);
    if (!m_place.empty() && CreateBeside(old)) return true;
    if (rule != ERule::Overwrite) return m_place.empty() ? Fail(std::make_error_code(std::errc::not_supported)) : false;
    // A disk without room for a second file has none for the new content either: leave the old file alone.
    const bool isFull = !m_place.empty() && isThere && !IsRefusal(m_file.Failure().error);
    return isFull || m_file.Create(path);
}

bool CReplacingFile::CreateBeside(const CFile& old) {
    const auto create = [&](const std::string& name) {
        return m_file.CreateLike(name, old) ? std::error_code() : m_file.Failure().error;
    };
    return !MakeBeside(m_place, m_beside, create);
}

bool CReplacingFile::Fail(std::error_code error, CFileFailure::enStep step) {
    m_failure = {error, step};
    return false;
}

bool CReplacingFile::Finish() {
    if (m_file.IsOpen() && !Failure()) static_cast<void>(m_file.FlushToDisk());
    m_file.Close();
    return !Failure();
}

bool CReplacingFile::Commit() {
    const bool isThere = Finish() && (m_beside.empty() || Move()) && FlushFolder();
    Discard();
    return isThere;
}

bool CReplacingFile::CommitAll(std::span<CReplacingFile* const> files) {
    const auto finish = [](CReplacingFile* file) { return file->Finish(); };
    const auto keep = [](CReplacingFile* file) { return file->KeepOld(); };
    const auto move = [](CReplacingFile* file) { return file->Move(); };
    const auto flush = [&](CReplacingFile* const& file) {
        const auto shares = [file](const CReplacingFile* other) { return file->SharesFolder(*other); };
        return std::any_of(files.data(), &file, shares) || file->FlushFolder();
    };
    const bool isDone = std::all_of(files.begin(), files.end(), finish) &&
                        std::all_of(files.begin(), files.end(), keep) &&
                        std::all_of(files.begin(), files.end(), move) && std::all_of(files.begin(), files.end(), flush);
    for (CReplacingFile* const file : files) {
        if (!isDone) file->BringBackOld();
        file->Discard();
    }
    return isDone;
}

bool CReplacingFile::Move() {
    const std::error_code error =
        m_rule == ERule::New ? MoveWholeToFree(m_beside, m_place) : MoveOver(m_beside, m_place);
    if (!error) {
        m_beside.clear();
        m_isMoved = true;
        return true;
    }
    return m_rule == ERule::Overwrite && IsRefusal(error) ? CopyOver() : Fail(error);
}

/// Writes the new content over the old file, which can be written but not replaced.
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
    if (m_file.End() != size && !Failure()) Fail(std::make_error_code(std::errc::io_error));
    return Finish();
}

bool CReplacingFile::FlushFolder() {
    const std::error_code error = helpers::FlushFolder(m_file.Folder());
    return !error || error == std::errc::permission_denied || Fail(error, CFileFailure::enStep::FlushingFolder);
}

bool CReplacingFile::SharesFolder(const CReplacingFile& other) const {
    const auto folder = [](std::string_view place) { return place.substr(0, place.find_last_of("/\\:") + 1); };
    return folder(m_place) == folder(other.m_place);
}

/// Gives the old file a second name, so that it can be restored.
bool CReplacingFile::KeepOld() {
    if (m_rule == ERule::New) return true;
    CFile old;  // a folder may have taken the place since
    if (!old.OpenForWriting(m_place) && old.Failure().error != std::errc::no_such_file_or_directory)
        return Fail(old.Failure().error);
    old.Close();
    const auto keep = [&](const std::string& name) { return KeepAs(m_place, name); };
    const std::error_code error = MakeBeside(m_place, m_old, keep);
    return !error || error == std::errc::no_such_file_or_directory || Fail(error);
}

void CReplacingFile::BringBackOld() noexcept {
    if (!m_old.empty()) {
        if (MoveOver(m_old, m_place)) m_old.clear();  // it has no other name now
    } else if (m_isMoved) {
        RemoveFile(m_place);
    }
}

void CReplacingFile::Discard() noexcept {
    m_file.Close();
    for (std::string* const name : {&m_beside, &m_old}) {
        if (!name->empty()) RemoveFile(*name);
        name->clear();
    }
    m_isMoved = false;
}

}  // namespace vxfileio::helpers
