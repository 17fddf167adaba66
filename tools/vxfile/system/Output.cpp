#include "tools/vxfile/system/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/Interrupt.h"
#include "vxfileio/helpers/NumberText.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr int kStandardOutput = 1;

constexpr std::size_t kBlockSize = std::size_t{64} << 10;

/// From this size on a part isn't copied into the block, but written as it is.
constexpr std::size_t kLargePart = std::size_t{16} << 10;

/// A name beside `path` that no file has yet.
std::string FreeNameBeside(const std::string& path) {
    std::error_code ignored;
    for (int number = 1;; ++number) {
        std::string name = path + ".part" + std::to_string(number);
        if (!fs::exists(name, ignored)) return name;
    }
}

/// Tells whether something is a device or a pipe. Windows doesn't say so of its own, such as `nul`, but has another way
/// there for them.
bool IsSpecial(const std::string& path) {
    std::error_code none;
    const auto status = fs::status(path, none);
    const bool isOther = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
    return isOther || fs::absolute(path, none).string().starts_with(R"(\\.\)");
}

/// `error` is the system's number; 0 if nobody knows any more. What was interrupted wasn't refused.
[[noreturn]] void RefuseWrite(const std::string& target, int error) {
    CheckInterrupt();
    const std::string reason = error == 0 ? "" : std::string(": ") + std::strerror(error);
    throw CFailure("Can't write to " + target + reason + "; make room, or write elsewhere.");
}

/// What a path leads to.
struct CTarget {
    std::string path;              ///< Links followed.
    std::optional<int> open = {};  ///< The number of an open file, if it is no name: 1 of `/dev/stdout`.
};

CTarget Follow(const std::string& path) {
    constexpr int kMostLinks = 40;  // the system itself follows no more
    std::error_code none;
    const fs::path openFiles = fs::canonical("/proc/self/fd", none);
    fs::path place = path;
    for (int links = 0; fs::is_symlink(fs::symlink_status(place, none)); ++links) {
        const fs::path folder = fs::canonical(place.has_parent_path() ? place.parent_path() : ".", none);
        if (!openFiles.empty() && folder == openFiles)
            return {path, vxfileio::helpers::ParseInt32(place.filename().string())};
        if (links == kMostLinks) throw CFailure(path + " is a link that leads round in circles; name a file.");
        place = folder / fs::read_symlink(place, none);
    }
    return {place == path ? path : place.string()};
}

}  // namespace

void RefuseTarget(const std::string& target, const std::string& source) {
    std::error_code ignored;
    if (target.empty()) throw CFailure("The output has no name; name a file by -o.");
    if (target == "-")
        throw CFailure("A file that appears only when it is whole can't go to standard output; name it by -o.");
    if (fs::equivalent(target, source, ignored))
        throw CFailure(target + " is the file itself, which is never written to; choose another name.");
}

CWholeFile::CWholeFile(std::string path, bool replace) : m_path(std::move(path)), m_replace(replace) {
    std::error_code ignored;
    const CTarget target = Follow(m_path);
    m_place = target.path;
    m_workPath = FreeNameBeside(m_place);
    if (fs::is_directory(m_place, ignored)) throw CFailure(m_path + " is a folder; name a file in it.");
    if (target.open || IsSpecial(m_place))
        throw CFailure(m_path + " is a device or a pipe, which can't hold the whole file; name a file.");
    RefuseReplacing();
}

CWholeFile::~CWholeFile() {
    std::error_code ignored;
    if (!m_committed) fs::remove(m_workPath, ignored);
}

void CWholeFile::RefuseReplacing() const {
    std::error_code ignored;
    if (!m_replace && fs::exists(m_place, ignored))
        throw CFailure(m_path + " is there already; choose another name, or replace it with --force.");
}

void CWholeFile::Take(const std::string& made) {
    std::error_code error;
    fs::rename(made, m_workPath, error);
    if (error) fs::copy_file(made, m_workPath, error);  // a link may lead to another disk
    if (error) throw CFailure("Can't write to " + m_path + ": " + error.message() + "; make room, or write elsewhere.");
}

void CWholeFile::Commit() {
    std::error_code error;
    RefuseReplacing();
    if (const auto replaced = fs::status(m_place, error); fs::exists(replaced))
        fs::permissions(m_workPath, replaced.permissions(), error);
    fs::rename(m_workPath, m_place, error);
    if (error) throw CFailure("Can't put " + m_path + " in its place: " + error.message() + ".");
    m_committed = true;
}

COutput::COutput(const std::string& path, const std::string& source, bool replace) : m_name(path) {
    m_gathered.reserve(kBlockSize);
    if (path == "-") {
        m_name = "standard output";
        m_descriptor.UseOpen(kStandardOutput);
    } else {
        RefuseTarget(path, source);
        Open(path, replace);
    }
}

/// A pipe or a device is written to; only a file can be put in the place of another.
void COutput::Open(const std::string& path, bool replace) {
    if (const auto open = Follow(path).open) return m_descriptor.UseOpen(*open);
    if (!IsSpecial(path)) m_file = std::make_unique<CWholeFile>(path, replace);
    if (m_descriptor.Create(m_file ? m_file->WorkPath() : path)) return;
    const int error = errno;
    CheckInterrupt();  // of waiting for somebody to open the other end of a pipe
    throw CFailure("Can't create " + path + ": " + std::strerror(error) + "; choose another folder.");
}

/// What went into a pipe stays there, so the rest of it may as well follow.
COutput::~COutput() {
    if (!m_file && !IsInterrupted()) static_cast<void>(m_descriptor.Write(m_gathered));
}

void COutput::Write(std::string_view text) { Write(std::as_bytes(std::span(text))); }

void COutput::Write(std::span<const std::byte> bytes) {
    if (m_gathered.size() + bytes.size() > kBlockSize) Flush();
    if (bytes.size() >= kLargePart) {
        Flush();
        Pass(bytes);
    } else {
        m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.end());
    }
}

void COutput::RewriteFront(std::string_view text) {
    Flush();
    Check(m_descriptor.GoToFront());
    Pass(std::as_bytes(std::span(text)));
}

void COutput::Commit() {
    Flush();
    if (!m_file) return;
    Check(m_descriptor.Close());
    m_file->Commit();
}

void COutput::Pass(std::span<const std::byte> bytes) {
    CheckInterrupt();
    Check(m_descriptor.Write(bytes));
}

void COutput::Flush() {
    Pass(m_gathered);
    m_gathered.clear();
}

void COutput::Check(bool good) {
    if (good) return;
    m_gathered.clear();
    RefuseWrite(m_name, errno);
}

void FinishPrinting() {
    errno = 0;
    std::cout.flush();
    const bool isWhole = std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good();
    if (!isWhole) RefuseWrite("standard output", errno);
}

}  // namespace vxfile
