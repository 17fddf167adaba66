#include "tools/vxfile/io/Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/Interrupt.h"

namespace vxfile {

namespace {

constexpr std::size_t kBlockSize = std::size_t{64} << 10;

/// From this size on a part isn't copied into the block, but written as it is.
constexpr std::size_t kLargePart = std::size_t{16} << 10;

/// A name beside `path` that no file has yet.
std::string FreeNameBeside(const std::string& path) {
    std::error_code ignored;
    for (int number = 1;; ++number) {
        std::string name = path + ".part" + std::to_string(number);
        if (!std::filesystem::exists(name, ignored)) return name;
    }
}

/// `error` is the system's number; 0 if nobody knows any more.
[[noreturn]] void RefuseWrite(const std::string& target, int error) {
    const std::string reason = error == 0 ? "" : std::string(": ") + std::strerror(error);
    throw CFailure("Can't write to " + target + reason + "; make room, or write elsewhere.");
}

}  // namespace

void RefuseTarget(const std::string& target, const std::string& source) {
    std::error_code ignored;
    if (target == "-") throw CFailure("This can't go to standard output; name a file by -o.");
    if (std::filesystem::equivalent(target, source, ignored))
        throw CFailure(target + " is the file itself, which is never written to; choose another name.");
}

CWholeFile::CWholeFile(std::string path, bool replace) : m_path(std::move(path)), m_workPath(FreeNameBeside(m_path)) {
    std::error_code ignored;
    if (std::filesystem::is_directory(m_path, ignored)) throw CFailure(m_path + " is a folder; name a file in it.");
    if (!std::filesystem::exists(m_path, ignored)) return;
    if (!std::filesystem::is_regular_file(m_path, ignored))
        throw CFailure(m_path + " is a device or a pipe, which can't hold the whole file; name a file.");
    if (!replace) throw CFailure(m_path + " is there already; choose another name, or replace it with --force.");
}

CWholeFile::~CWholeFile() {
    std::error_code ignored;
    if (!m_committed) std::filesystem::remove(m_workPath, ignored);
}

void CWholeFile::Commit() {
    std::error_code error;
    std::filesystem::rename(m_workPath, m_path, error);
    if (error) throw CFailure("Can't put " + m_path + " in its place: " + error.message() + ".");
    m_committed = true;
}

COutput::COutput(const std::string& path, const std::string& source) : m_name(path) {
    m_gathered.reserve(kBlockSize);
    if (path == "-") {
        m_name = "standard output";
        m_descriptor.UseStandardOutput();
        return;
    }
    RefuseTarget(path, source);
    // A pipe or a device is written to; only a file can be put in the place of another.
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    const bool isSpecial = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (!isSpecial || std::filesystem::is_directory(status)) m_file = std::make_unique<CWholeFile>(path);
    if (!m_descriptor.Create(m_file ? m_file->WorkPath() : path))
        throw CFailure("Can't create " + path + ": " + std::strerror(errno) + "; choose another folder.");
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
