#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <span>
#include <string>
#include <string_view>

/// @file
/// Shared by the fuzz targets. A target is a function that accepts any bytes. It aborts the process if a condition is
/// violated, and the fuzzer then keeps the bytes.

using Input = std::span<const std::uint8_t>;

/// Aborts the process unless the condition holds.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "doesn't hold: %s\n", what);
    std::abort();
}

/// A temporary folder of this process, in memory if possible, removed at the end.
class CFuzzFolder {
 public:
    /// Returns the path of a file in the folder.
    static std::string Path(const std::string& name) {
        static const CFuzzFolder folder;
        return folder.m_path / name;
    }

    ~CFuzzFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CFuzzFolder(const CFuzzFolder&) = delete;
    CFuzzFolder& operator=(const CFuzzFolder&) = delete;

 private:
    CFuzzFolder() {
        const bool inMemory = std::getenv("TMPDIR") == nullptr && std::filesystem::is_directory("/dev/shm");
        m_path = inMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path();
        m_path /= "vxfileio-fuzz-" + std::to_string(std::random_device{}());
        std::filesystem::create_directories(m_path);
    }

    std::filesystem::path m_path;
};

/// More bytes than what a reader says about any document.
inline constexpr std::size_t kMostReadError = 16'384;

/// Writes a file with exactly these bytes.
inline void WriteBytes(const std::string& path, Input bytes) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    Require(file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size(), "room for the input");
    std::fclose(file);
}
inline void WriteBytes(const std::string& path, std::string_view bytes) {
    WriteBytes(path, Input(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

/// Returns all bytes of a file.
inline std::string ReadBytes(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    Require(file != nullptr, "the file is there");
    std::string bytes;
    char block[4096];
    for (std::size_t read = 1; read > 0;)
        bytes.append(block, read = std::fread(block, 1, sizeof block, file));
    std::fclose(file);
    return bytes;
}

/// An input that is a list of calls and their arguments, consumed from the front. After its end everything is 0.
class CCalls {
 public:
    explicit CCalls(Input input) : m_rest(input) {}

    bool AtEnd() const { return m_rest.empty(); }
    Input Rest() const { return m_rest; }

    std::uint8_t Byte() {
        if (m_rest.empty()) return 0;
        const std::uint8_t byte = m_rest.front();
        m_rest = m_rest.subspan(1);
        return byte;
    }

    /// Returns a little-endian number of `bytes` bytes.
    std::uint64_t Number(int bytes) {
        std::uint64_t number = 0;
        for (int i = 0; i < bytes; ++i)
            number |= std::uint64_t{Byte()} << (8 * i);
        return number;
    }
    std::int64_t Signed(int bytes) {
        const int shift = 64 - 8 * bytes;
        return static_cast<std::int64_t>(Number(bytes) << shift) >> shift;
    }

    /// Returns a text of up to 255 bytes, stored as its length and its bytes.
    std::string Text() {
        const std::size_t size = std::min<std::size_t>(Byte(), m_rest.size());
        std::string text(reinterpret_cast<const char*>(m_rest.data()), size);
        m_rest = m_rest.subspan(size);
        return text;
    }

 private:
    Input m_rest;
};
