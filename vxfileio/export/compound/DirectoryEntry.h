#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "vxfileio/export/compound/CompoundFormat.h"

namespace vxfileio::compound {

/// An entry of the directory, with fields in the order of their bytes. Siblings and child are indices of other entries.
/// All entries are black: the trees of siblings are sorted, not balanced. Times are never set.
struct DirectoryEntry {
    std::array<std::uint16_t, vxfileio::compound::kNameUnits> name = {};
    std::uint16_t nameSize = 0;  ///< In bytes, including the terminating zero.
    std::uint8_t type = 0;       ///< An `EEntryType`; 0 for an unused entry.
    std::uint8_t colour = 1;
    std::uint32_t left = vxfileio::compound::kNoEntry;
    std::uint32_t right = vxfileio::compound::kNoEntry;
    std::uint32_t child = vxfileio::compound::kNoEntry;
    std::array<std::uint8_t, 16> classID = {};
    std::uint32_t stateBits = 0;
    std::array<std::uint64_t, 2> times = {};  ///< Creation and modification.
    std::uint32_t startSector = vxfileio::compound::kEndOfChain;
    std::uint32_t streamSize = 0;  ///< In bytes.
    std::uint32_t reserved = 0;

    /// An unused entry.
    DirectoryEntry() = default;
    /// An entry without content. Each byte of the name, at most 31, becomes one 16-bit unit.
    DirectoryEntry(vxfileio::compound::EEntryType entryType, std::string_view bytesOfName);

    bool Is(vxfileio::compound::EEntryType asked) const { return type == static_cast<std::uint8_t>(asked); }

    static constexpr void Fields(auto& self, auto& body) {
        body(self.name, self.nameSize, self.type, self.colour, self.left, self.right, self.child, self.classID,
             self.stateBits, self.times, self.startSector, self.streamSize, self.reserved);
    }
};

/// The order of siblings and entries: by length of the name, then by 16-bit units.
bool HasLowerName(const DirectoryEntry& a, const DirectoryEntry& b);

}  // namespace vxfileio::compound
