#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// @file
/// A second reader of compound files, written from the published format. It shares no code with the library.

/// Returns the number of `size` bytes at an offset, least significant byte first.
inline std::uint64_t NumberAt(const std::string& bytes, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(bytes.at(at + i))} << (8 * i);
    return value;
}
inline std::uint32_t U32(const std::string& bytes, std::size_t at) {
    return static_cast<std::uint32_t>(NumberAt(bytes, at, 4));
}
inline std::uint16_t U16(const std::string& bytes, std::size_t at) {
    return static_cast<std::uint16_t>(NumberAt(bytes, at, 2));
}

/// Reads a whole compound file. Checks that every sector in use has exactly one owner, that all others are free, and
/// that siblings are sorted. Throws `std::runtime_error` with the reason if the file breaks a rule.
class CompoundReader {
 public:
    struct Entry {
        std::string name;
        unsigned type = 0;
        std::uint32_t left = 0;
        std::uint32_t right = 0;
        std::uint32_t child = 0;
        std::uint32_t start = 0;
        std::uint32_t size = 0;
    };

    explicit CompoundReader(std::string bytes) : m_bytes(std::move(bytes)) {
        Require(m_bytes.size() >= 512 && m_bytes.size() % 512 == 0, "whole sectors");
        Require(m_bytes.substr(0, 8) == "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "signature");
        m_owned.resize(m_bytes.size() / 512 - 1);
        ReadFat();
        m_miniFat = Marks(Chain(m_fat, U32(m_bytes, 60), &m_owned), U32(m_bytes, 64));
        m_miniOwned.resize(m_miniFat.size());
        ReadDirectory();
        const Entry& root = entries.at(0);
        Require(root.type == 5 && root.name == "Root Entry", "root entry");
        m_miniStream = Content(Chain(m_fat, root.start, &m_owned), root.size);
        Require(root.size % 64 == 0 && root.size / 64 <= m_miniFat.size(), "mini stream in mini sectors");
        ReadStorage(root.child, "");
        CheckFree(m_fat, m_owned);
        CheckFree(m_miniFat, m_miniOwned);
        for (std::size_t i = root.size / 64; i < m_miniOwned.size(); ++i)
            Require(!m_miniOwned[i], "mini sector behind the end");
    }

    std::vector<Entry> entries;                  ///< By index, without unused entries at the end.
    std::map<std::string, std::string> streams;  ///< Content by path, with a slash between names.
    std::vector<std::string> storages;           ///< Paths in the same form, in order of the walk.

    /// Returns the FAT's mark of a sector.
    std::uint32_t Mark(std::size_t sector) const { return m_fat.at(sector); }
    /// Returns the number of sectors that have an owner.
    std::size_t SectorsInUse() const { return CountOf(m_owned); }
    std::size_t MiniSectorsInUse() const { return CountOf(m_miniOwned); }

 private:
    using Numbers = std::vector<std::uint32_t>;

    static void Require(bool holds, const std::string& what) {
        if (!holds) throw std::runtime_error(what);
    }

    static std::size_t CountOf(const std::vector<bool>& owned) {
        return static_cast<std::size_t>(std::count(owned.begin(), owned.end(), true));
    }

    std::string Sector(std::uint32_t sector) const {
        Require(sector < m_owned.size(), "sector inside the file");
        return m_bytes.substr(512 * (std::size_t{sector} + 1), 512);
    }

    void Own(std::uint32_t sector, std::uint32_t mark) {
        Require(sector < m_owned.size() && !m_owned[sector], "one owner for a sector");
        Require(m_fat.at(sector) == mark, "mark of a sector of the tables");
        m_owned[sector] = true;
    }

    void ReadFat() {
        Numbers fatSectors;
        for (std::size_t i = 0; i < 109; ++i)
            fatSectors.push_back(U32(m_bytes, 76 + 4 * i));
        Numbers difatSectors;
        for (std::uint32_t next = U32(m_bytes, 68); next != 0xFFFFFFFE; next = U32(Sector(next), 508)) {
            difatSectors.push_back(next);
            Require(difatSectors.size() <= U32(m_bytes, 72), "number of DIFAT sectors");
            const std::string sector = Sector(next);
            for (std::size_t i = 0; i < 127; ++i)
                fatSectors.push_back(U32(sector, 4 * i));
        }
        Require(difatSectors.size() == U32(m_bytes, 72), "number of DIFAT sectors");
        const auto end = std::find(fatSectors.begin(), fatSectors.end(), 0xFFFFFFFF);
        Require(std::all_of(end, fatSectors.end(), [](auto entry) { return entry == 0xFFFFFFFF; }), "gap in the DIFAT");
        fatSectors.erase(end, fatSectors.end());
        m_fat = Marks(fatSectors, U32(m_bytes, 44));
        for (const auto sector : fatSectors)
            Own(sector, 0xFFFFFFFD);
        for (const auto sector : difatSectors)
            Own(sector, 0xFFFFFFFC);
    }

    Numbers Marks(const Numbers& sectors, std::size_t count) const {
        Require(sectors.size() == count, "number of table sectors");
        Numbers marks;
        for (const auto number : sectors) {
            const std::string sector = Sector(number);
            for (std::size_t i = 0; i < 128; ++i)
                marks.push_back(U32(sector, 4 * i));
        }
        return marks;
    }

    static Numbers Chain(const Numbers& table, std::uint32_t first, std::vector<bool>* owned) {
        Numbers chain;
        for (std::uint32_t sector = first; sector != 0xFFFFFFFE; sector = table.at(sector)) {
            Require(sector < owned->size() && !(*owned)[sector], "one owner for a sector of a chain");
            (*owned)[sector] = true;
            chain.push_back(sector);
        }
        return chain;
    }

    void ReadDirectory() {
        const Numbers chain = Chain(m_fat, U32(m_bytes, 48), &m_owned);
        const std::string bytes = Content(chain, 512 * chain.size());
        for (std::size_t at = 0; at < bytes.size(); at += 128) {
            const std::size_t nameSize = U16(bytes, at + 64);
            if (nameSize == 0) {
                Require(bytes.substr(at, 128) == std::string(128, '\0'), "empty slot");
                continue;
            }
            Require(entries.size() == at / 128, "entry behind an empty slot");
            std::string name;
            for (std::size_t i = 0; i + 2 < nameSize; i += 2)
                name += static_cast<char>(U16(bytes, at + i));
            entries.push_back({name, static_cast<unsigned char>(bytes[at + 66]), U32(bytes, at + 68),
                               U32(bytes, at + 72), U32(bytes, at + 76), U32(bytes, at + 116), U32(bytes, at + 120)});
        }
    }

    /// Reads siblings from left to right; each name must sort after the one before.
    void ReadStorage(std::uint32_t index, const std::string& path) {
        std::vector<std::uint32_t> siblings;
        std::vector<std::uint32_t> open;
        while (index != 0xFFFFFFFF || !open.empty()) {
            for (; index != 0xFFFFFFFF; index = entries.at(index).left) {
                Require(open.size() <= entries.size(), "circle of siblings");
                open.push_back(index);
            }
            siblings.push_back(open.back());
            open.pop_back();
            index = entries.at(siblings.back()).right;
        }
        const auto isBelow = [this](auto a, auto b) {
            const auto& x = entries.at(a).name;
            const auto& y = entries.at(b).name;
            return std::pair(x.size(), x) < std::pair(y.size(), y);
        };
        Require(std::is_sorted(siblings.begin(), siblings.end(), isBelow), "order of siblings");
        for (const auto sibling : siblings)
            ReadEntry(entries.at(sibling), path);
    }

    void ReadEntry(const Entry& entry, const std::string& path) {
        if (entry.type == 1) {
            storages.push_back(path + entry.name);
            ReadStorage(entry.child, path + entry.name + "/");
            return;
        }
        Require(entry.type == 2 && entry.child == 0xFFFFFFFF, "type of an entry");
        const bool isBig = entry.size >= 4096;
        const Numbers chain = isBig ? Chain(m_fat, entry.start, &m_owned) : Chain(m_miniFat, entry.start, &m_miniOwned);
        const std::string content = isBig ? Content(chain, entry.size) : MiniContent(chain, entry.size);
        Require(streams.emplace(path + entry.name, content).second, "one entry of a name");
    }

    /// Returns the content of a chain; all bytes after it must be zeros.
    std::string Content(const Numbers& chain, std::size_t size) const {
        std::string bytes;
        for (const auto sector : chain)
            bytes.append(m_bytes, 512 * (std::size_t{sector} + 1), 512);
        return Cut(bytes, size, 512);
    }

    std::string MiniContent(const Numbers& chain, std::size_t size) const {
        std::string bytes;
        for (const auto sector : chain)
            bytes += m_miniStream.substr(std::size_t{64} * sector, 64);
        return Cut(bytes, size, 64);
    }

    static std::string Cut(const std::string& bytes, std::size_t size, std::size_t unit) {
        Require(bytes.size() == (size + unit - 1) / unit * unit, "length of a chain");
        Require(bytes.find_first_not_of('\0', size) == std::string::npos, "zeros behind a stream");
        return bytes.substr(0, size);
    }

    static void CheckFree(const Numbers& table, const std::vector<bool>& owned) {
        for (std::size_t i = 0; i < table.size(); ++i)
            Require((table[i] != 0xFFFFFFFF) == (i < owned.size() && owned[i]), "free sectors");
    }

    std::string m_bytes;
    Numbers m_fat;
    Numbers m_miniFat;
    std::vector<bool> m_owned;  ///< By sector of the file.
    std::vector<bool> m_miniOwned;
    std::string m_miniStream;
};
