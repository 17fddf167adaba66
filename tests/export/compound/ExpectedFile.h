#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// @file
/// Builds the expected bytes of a file with one stream, sector by sector.

/// Returns the bytes of numbers, least significant byte first.
template <class Number>
std::string LittleEndianText(const std::vector<Number>& numbers) {
    std::string text;
    for (const Number number : numbers) {
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            text += static_cast<char>(std::uint64_t{number} >> (8 * i));
    }
    return text;
}

inline std::string DirectorySlot(const std::string& name, unsigned type, std::uint32_t child, std::uint32_t start,
                                 std::uint32_t size) {
    std::string slot(64, '\0');
    for (std::size_t i = 0; i < name.size(); ++i)
        slot[2 * i] = name[i];
    slot += LittleEndianText<std::uint16_t>({static_cast<std::uint16_t>(2 * name.size() + 2)});
    slot += static_cast<char>(type);
    slot += '\1';                                                              // black
    slot += LittleEndianText<std::uint32_t>({0xFFFFFFFF, 0xFFFFFFFF, child});  // siblings, child
    slot += std::string(16 + 4 + 16, '\0');                                    // class ID, state bits, times
    return slot + LittleEndianText<std::uint32_t>({start, size, 0});
}

/// A file under construction: sectors by number, and their marks.
struct CExpectedFile {
    std::map<std::uint32_t, std::string> sectors;
    std::vector<std::uint32_t> fat = std::vector<std::uint32_t>(128, 0xFFFFFFFF);
    std::vector<std::uint32_t> fatSectors = {0};
    std::vector<std::uint32_t> difatSectors;
    std::uint32_t next = 2;
    std::uint32_t firstMiniFat = 0xFFFFFFFE;
    std::string directory;

    /// Returns the next free sector. Sectors 128, 256 and so on belong to the FAT. Once the header's list of 109 is
    /// full, each DIFAT sector follows the first of the 127 FAT sectors that it lists.
    std::uint32_t Take() {
        if (next % 128 == 0) {
            fatSectors.push_back(next);
            fat.resize(fat.size() + 128, 0xFFFFFFFF);
            fat[next++] = 0xFFFFFFFD;
            if (fatSectors.size() >= 110 && (fatSectors.size() - 110) % 127 == 0) {
                difatSectors.push_back(next);
                fat[next++] = 0xFFFFFFFC;
            }
        }
        fat[next] = 0xFFFFFFFE;
        return next++;
    }

    /// Puts content into sector `first` and the following ones.
    void Place(std::uint32_t first, const std::string& content) {
        std::uint32_t sector = first;
        for (std::size_t at = 0; at < content.size(); at += 512) {
            if (at > 0) sector = fat[sector] = Take();
            sectors[sector] = content.substr(at, 512);
        }
    }

    std::string Bytes() {
        fat[0] = 0xFFFFFFFD;
        fat[1] = 0xFFFFFFFE;
        sectors[1] = directory;
        for (std::size_t i = 0; i < fatSectors.size(); ++i)
            sectors[fatSectors[i]] =
                LittleEndianText(std::vector(fat.begin() + 128 * static_cast<std::ptrdiff_t>(i),
                                             fat.begin() + 128 * static_cast<std::ptrdiff_t>(i + 1)));
        PlaceDifat();
        std::string bytes = Header();
        for (auto& [number, sector] : sectors) {
            sector.resize(512);
            bytes.resize(512 * (std::size_t{number} + 1));
            bytes += sector;
        }
        return bytes;
    }

 private:
    void PlaceDifat() {
        for (std::size_t i = 0; i < difatSectors.size(); ++i) {
            std::vector<std::uint32_t> list;
            for (std::size_t j = 109 + 127 * i; j < 109 + 127 * (i + 1); ++j)
                list.push_back(j < fatSectors.size() ? fatSectors[j] : 0xFFFFFFFF);
            list.push_back(i + 1 < difatSectors.size() ? difatSectors[i + 1] : 0xFFFFFFFE);
            sectors[difatSectors[i]] = LittleEndianText(list);
        }
    }

    std::string Header() const {
        const auto count = [](const auto& list) { return static_cast<std::uint32_t>(list.size()); };
        std::vector<std::uint32_t> list = fatSectors;
        list.resize(109, 0xFFFFFFFF);
        const std::uint32_t firstDifat = difatSectors.empty() ? 0xFFFFFFFE : difatSectors[0];
        return "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(16, '\0') +
               LittleEndianText<std::uint16_t>({0x3B, 3, 0xFFFE, 9, 6}) + std::string(6, '\0') +
               LittleEndianText<std::uint32_t>({0, count(fatSectors), 1, 0, 4096, firstMiniFat,
                                                firstMiniFat == 0xFFFFFFFE ? 0U : 1U, firstDifat,
                                                count(difatSectors)}) +
               LittleEndianText(list);
    }
};

/// Returns a new file with one stream "Workbook" of this content.
inline std::string ExpectedWorkbookFile(const std::string& content) {
    CExpectedFile file;
    std::uint32_t rootStart = 0xFFFFFFFE;
    std::uint32_t rootSize = 0;
    std::uint32_t start = 0xFFFFFFFE;
    if (content.size() >= 4096) {
        start = file.Take();
        file.Place(start, content);
    } else if (!content.empty()) {
        start = 0;
        rootStart = file.Take();
        file.firstMiniFat = file.Take();
        const auto miniSectors = static_cast<std::uint32_t>((content.size() + 63) / 64);
        rootSize = 64 * miniSectors;
        file.Place(rootStart, content);
        std::vector<std::uint32_t> miniFat(128, 0xFFFFFFFF);
        for (std::uint32_t i = 0; i < miniSectors; ++i)
            miniFat[i] = i + 1 < miniSectors ? i + 1 : 0xFFFFFFFE;
        file.sectors[file.firstMiniFat] = LittleEndianText(miniFat);
    }
    file.directory = DirectorySlot("Root Entry", 5, 1, rootStart, rootSize) +
                     DirectorySlot("Workbook", 2, 0xFFFFFFFF, start, static_cast<std::uint32_t>(content.size()));
    return file.Bytes();
}
