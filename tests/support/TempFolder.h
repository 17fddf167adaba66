#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

/// A temporary folder for one test. The destructor removes it.
class CTempFolder {
 public:
    CTempFolder() : CTempFolder(Parent()) {}
    explicit CTempFolder(const std::filesystem::path& parent) {
        const std::string tag = std::to_string(std::random_device{}()) + std::to_string(std::random_device{}());
        m_folder = parent / ("vxfileio-test-" + tag);
        std::filesystem::create_directories(m_folder);
    }
    ~CTempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    /// Returns the path of a file in the folder.
    std::string Path(const std::string& name) const { return (m_folder / name).string(); }

 private:
    /// Returns a folder in memory if there is one with enough room: flushing thousands of files to a disk takes
    /// minutes.
    static std::filesystem::path Parent() {
        constexpr std::uintmax_t kRoom = std::uintmax_t{5} << 30;
        const std::filesystem::path memory = "/dev/shm";
        std::error_code error;
        const auto space = std::filesystem::space(memory, error);
        return !error && space.available >= kRoom ? memory : std::filesystem::temp_directory_path();
    }

    std::filesystem::path m_folder;
};

/// Returns all bytes of a file. Fails the test if the file can't be opened.
inline std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Writes a file with exactly these bytes.
inline void WriteAll(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file.good()) << path;
}
