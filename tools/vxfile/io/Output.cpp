#include "tools/vxfile/io/Output.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/Interrupt.h"
#include "tools/vxfile/io/Terminal.h"

namespace vxfile {

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

/// A name beside `path` that no file has yet.
std::string FreeNameBeside(const std::string& path) {
    std::error_code ignored;
    for (int number = 1;; ++number) {
        std::string name = path + ".part" + std::to_string(number);
        if (!std::filesystem::exists(name, ignored)) return name;
    }
}

int SeekTo(std::FILE* stream, std::int64_t position, int origin) {
#ifdef _WIN32
    return _fseeki64(stream, position, origin);
#else
    return fseeko(stream, position, origin);
#endif
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
    if (!replace && std::filesystem::exists(m_path, ignored))
        throw CFailure(m_path + " is there already; choose another name, so that nothing is lost.");
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

COutput::COutput(const std::string& path, const std::string& source) {
    if (path == "-") {
        MakeOutputBinary();
        m_stream = stdout;
        return;
    }
    RefuseTarget(path, source);
    // A pipe or a device is written to; only a file can be put in the place of another.
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    const bool isSpecial = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (!isSpecial || std::filesystem::is_directory(status)) m_file = std::make_unique<CWholeFile>(path);
    m_stream = std::fopen((m_file ? m_file->WorkPath() : path).c_str(), "wb");
    if (m_stream == nullptr)
        throw CFailure("Can't create " + path + ": " + std::strerror(errno) + "; choose another folder.");
    static_cast<void>(std::setvbuf(m_stream, nullptr, _IOFBF, kBufferSize));  // without it, it is only slower
}

COutput::~COutput() {
    if (m_file && m_stream != nullptr) static_cast<void>(std::fclose(m_stream));  // a failure: the file goes anyway
}

void COutput::Write(std::string_view text) { Write(std::as_bytes(std::span(text))); }

void COutput::Write(std::span<const std::byte> bytes) {
    CheckInterrupt();
    Check(std::fwrite(bytes.data(), 1, bytes.size(), m_stream) == bytes.size());
}

void COutput::Rewrite(std::int64_t position, std::span<const std::byte> bytes) {
    Check(SeekTo(m_stream, position, SEEK_SET) == 0);
    Write(bytes);
    Check(SeekTo(m_stream, 0, SEEK_END) == 0);
}

void COutput::Commit() {
    if (!m_file) {
        Check(std::fflush(m_stream) == 0);
        return;
    }
    Check(std::fclose(std::exchange(m_stream, nullptr)) == 0);
    m_file->Commit();
}

void COutput::Check(bool good) const {
    if (good) return;
    const std::string target = m_file ? m_file->Path() : "standard output";
    throw CFailure("Can't write to " + target + ": " + std::strerror(errno) + "; make room, or write elsewhere.");
}

}  // namespace vxfile
