#include "tools/vxfile/system/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <system_error>

#include "tools/vxfile/system/Interrupt.h"
#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "vxfileio/helpers/NumberText.h"

using vxfileio::helpers::CReplacingFile;

namespace vxfile {

namespace {

namespace fs = std::filesystem;

constexpr int kStandardOutput = 1;

constexpr std::size_t kBlockSize = std::size_t{64} << 10;

/// Parts of this size or more are written directly instead of being copied into the block.
constexpr std::size_t kLargePart = std::size_t{16} << 10;

/// Returns whether a path is a device or a pipe. Some devices on Windows, such as `nul`, don't look like one.
bool IsSpecial(const std::string& path) {
    std::error_code none;
    const auto status = fs::status(path, none);
    const bool isOther = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
    return isOther || fs::absolute(path, none).string().starts_with(R"(\\.\)");
}

/// Returns the number of an open file if a path refers to one, such as 1 for `/dev/stdout`.
std::optional<int> OpenNumberOf(const std::string& path) {
    constexpr int kMostLinks = 40;  // the system's own limit
    std::error_code none;
    const fs::path openFiles = fs::canonical("/proc/self/fd", none);
    fs::path place = path;
    for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(place, none)); ++links) {
        const fs::path folder = fs::canonical(place.has_parent_path() ? place.parent_path() : ".", none);
        if (!openFiles.empty() && folder == openFiles) return vxfileio::helpers::ParseInt32(place.filename().string());
        place = folder / fs::read_symlink(place, none);
    }
    return std::nullopt;
}

[[noreturn]] void RefuseReplacing(const std::string& path) {
    throw CFailure(path + " is there already; choose another name, or replace it with --force.");
}

[[noreturn]] void RefuseCreating(const std::string& path, const std::error_code& error) {
    std::string advice = BackslashAdvice(path);
    if (advice.empty()) advice = "; choose another folder.";
    if (error == std::errc::filename_too_long) advice = "; give the file a shorter name.";
    throw CFailure("Can't create " + path + ": " + error.message() + advice);
}

/// `error` is the system's number, or 0 if unknown. An interruption isn't a refusal.
[[noreturn]] void RefuseWrite(const std::string& target, int error) {
    CheckInterrupt();
    const std::string reason = error == 0 ? "" : std::string(": ") + std::strerror(error);
    throw CFailure("Can't write to " + target + reason + "; make room, or write elsewhere.");
}

}  // namespace

void RefuseTarget(const std::string& target, const std::string& source) {
    std::error_code ignored;
    if (target.empty()) throw CFailure("The output has no name; name a file by -o.");
    if (target == "-")
        throw CFailure(
            "The new file appears only once it is complete, so it can't go to standard output; name a file after -o.");
    if (fs::equivalent(target, source, ignored))
        throw CFailure(target + " is the file itself, which is never written to; choose another name.");
}

void RefusePlace(const std::string& path, bool replace) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) throw CFailure(path + " is a folder; name a file in it.");
    if (OpenNumberOf(path) || IsSpecial(path))
        throw CFailure(path + " is a device or a pipe, which can't hold the whole file; name a file.");
    if (!replace && fs::exists(path, ignored)) RefuseReplacing(path);
}

void CreateWhole(CReplacingFile& file, const std::string& path, bool replace) {
    RefusePlace(path, replace);
    using enum CReplacingFile::ERule;
    if (!file.Create(path, replace ? Replace : New)) RefuseCreating(path, file.Failure().error);
}

void RefuseWrite(const std::string& target, const vxfileio::helpers::CFileFailure& failure) {
    CheckInterrupt();
    if (failure.error == std::errc::file_exists) RefuseReplacing(target);
    using enum vxfileio::helpers::CFileFailure::enStep;
    if (failure.step == Flushing || failure.step == FlushingFolder)
        throw CFailure("Can't flush " + target + " to the disk: " + failure.error.message() + "; check the disk.");
    if (failure.step == Replacing)
        throw CFailure("Can't put " + target + " in its place: " + failure.error.message() + ".");
    throw CFailure("Can't write to " + target + ": " + failure.error.message() + "; make room, or write elsewhere.");
}

COutput::COutput(const CTarget& target) : m_name(target.path) {
    m_gathered.reserve(kBlockSize);
    if (target.path == "-") {
        m_name = "standard output";
        m_descriptor.UseOpen(kStandardOutput);
    } else {
        RefuseTarget(target.path, {});
        for (const auto& source : target.sources)
            RefuseTarget(target.path, source);
        Open(target.path, target.replace);
    }
}

/// Pipes and devices are written directly; only a file can replace another.
void COutput::Open(const std::string& path, bool replace) {
    if (const auto open = OpenNumberOf(path)) return m_descriptor.UseOpen(*open);
    m_isFile = !IsSpecial(path);
    if (m_isFile) return CreateWhole(m_file, path, replace);
    if (m_descriptor.Open(path)) return;
    const int error = errno;
    CheckInterrupt();  // while waiting for a reader of the pipe
    RefuseCreating(path, {error, std::generic_category()});
}

/// Bytes in a pipe can't be taken back, so the rest is written, too.
COutput::~COutput() {
    if (!m_isFile && !IsInterrupted()) static_cast<void>(m_descriptor.Write(m_gathered));
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
    if (!m_file.File().WriteAt(0, {std::as_bytes(std::span(text))})) RefuseWrite(m_name, m_file.Failure());
}

void COutput::Finish() {
    Flush();
    if (m_isFile && !m_file.Finish()) RefuseWrite(m_name, m_file.Failure());
}

void COutput::Commit(std::span<COutput* const> outputs) {
    CheckInterrupt();
    std::vector<CReplacingFile*> files;
    for (COutput* const output : outputs) {
        if (output->m_isFile) files.push_back(&output->m_file);
    }
    const bool isDone = files.size() == 1 ? files.front()->Commit() : CReplacingFile::CommitAll(files);
    if (isDone) return;
    for (const COutput* const output : outputs) {
        if (output->m_file.Failure()) RefuseWrite(output->m_name, output->m_file.Failure());
    }
}

void COutput::Pass(std::span<const std::byte> bytes) {
    CheckInterrupt();
    if (m_isFile) {
        if (!m_file.File().Append({bytes})) RefuseWrite(m_name, m_file.Failure());
    } else if (!m_descriptor.Write(bytes)) {
        m_gathered.clear();
        RefuseWrite(m_name, errno);
    }
}

void COutput::Flush() {
    Pass(m_gathered);
    m_gathered.clear();
}

void FinishPrinting() {
    errno = 0;
    std::cout.flush();
    const bool isWhole = std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good();
    if (!isWhole) RefuseWrite("standard output", errno);
}

}  // namespace vxfile
