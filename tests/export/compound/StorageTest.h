#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

#include "tests/export/compound/CompoundReader.h"
#include "tests/support/TempFolder.h"
#include "vxfileio/export/compound/CompoundStorage.h"

/// Bytes per sector.
inline constexpr std::size_t kSector = 512;

using Numbers = std::vector<std::uint32_t>;

/// The marks of sectors that have no next one.
inline constexpr std::uint32_t kFree = 0xFFFFFFFF;
inline constexpr std::uint32_t kEnd = 0xFFFFFFFE;
inline constexpr std::uint32_t kFat = 0xFFFFFFFD;
inline constexpr std::uint32_t kDifat = 0xFFFFFFFC;

/// Returns the marks of the sectors from `first` to `last`.
inline Numbers Marks(const CompoundReader& reader, std::size_t first, std::size_t last) {
    Numbers marks;
    for (std::size_t i = first; i <= last; ++i)
        marks.push_back(reader.Mark(i));
    return marks;
}

/// Returns bytes that differ from sector to sector and from mini sector to mini sector, and are never zero.
inline std::string Pattern(std::size_t size, unsigned seed = 1) {
    std::string bytes(size, '\0');
    std::uint32_t state = seed;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>((state >> 24U) | 1U);
    }
    return bytes;
}

/// A fixture with a new compound file.
class StorageTest : public testing::Test {
 protected:
    StorageTest() { m_storage.Create(m_path); }

    std::int32_t Write(const std::string& name, const std::string& content) {
        return m_storage.WriteFile(name, std::as_bytes(std::span(content)));
    }

    /// Writes the content in pieces; each piece is invalid once the next one arrives. `size` is the declared size.
    std::int32_t WriteInPieces(const std::string& name, const std::string& content, std::size_t piece,
                               std::size_t size) {
        const auto give = [&](const vxfileio::compound::CompoundStorage::TakePiece& take) {
            for (std::size_t at = 0; at < content.size(); at += piece) {
                std::string bytes = content.substr(at, piece);
                take(std::as_bytes(std::span(bytes)));
                std::fill(bytes.begin(), bytes.end(), '?');
            }
        };
        return m_storage.WriteFile(name, size, give);
    }

    /// Creates a stream with content.
    void Add(const std::string& name, const std::string& content) {
        EXPECT_EQ(m_storage.MakeFile(name), 1) << name;
        EXPECT_EQ(Write(name, content), 1) << name;
    }

    std::string Bytes() const { return ReadAll(m_path); }
    CompoundReader Read() const { return CompoundReader(Bytes()); }

    CTempFolder m_folder;
    std::string m_path = m_folder.Path("storage.xls");
    vxfileio::compound::CompoundStorage m_storage;
};
