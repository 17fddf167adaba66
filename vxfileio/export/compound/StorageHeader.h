#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "vxfileio/base/FileMarks.h"
#include "vxfileio/export/compound/CompoundFormat.h"

namespace vxfileio::compound {

/// The header of a compound file, with fields in the order of their bytes. The defaults are those of a file with two
/// sectors: number 0 of the FAT, number 1 of the directory.
struct StorageHeader {
    std::array<std::uint8_t, base::kCompoundMark.size()> signature = [] {
        std::array<std::uint8_t, base::kCompoundMark.size()> mark{};
        std::ranges::transform(base::kCompoundMark, mark.begin(), [](char c) { return static_cast<std::uint8_t>(c); });
        return mark;
    }();
    std::array<std::uint8_t, 16> classID = {};
    std::uint16_t minorVersion = 0x003B;
    std::uint16_t majorVersion = 3;
    std::uint16_t byteOrder = 0xFFFE;
    std::uint16_t sectorShift = vxfileio::compound::kSectorShift;
    std::uint16_t miniSectorShift = vxfileio::compound::kMiniSectorShift;
    std::array<std::uint8_t, 6> reserved = {};
    std::uint32_t directorySectors = 0;  ///< Not counted in this version of the format.
    std::uint32_t fatSectors = 1;
    std::uint32_t firstDirectorySector = 1;
    std::uint32_t transactionSignature = 0;
    std::uint32_t miniStreamCutOff = vxfileio::compound::kMiniStreamCutOff;
    std::uint32_t firstMiniFatSector = vxfileio::compound::kEndOfChain;
    std::uint32_t miniFatSectors = 0;
    std::uint32_t firstDifatSector = vxfileio::compound::kEndOfChain;
    std::uint32_t difatSectors = 0;
    /// The first sectors of the FAT.
    std::array<std::uint32_t, vxfileio::compound::kDifatEntriesInHeader> difat = [] {
        std::array<std::uint32_t, vxfileio::compound::kDifatEntriesInHeader> sectors{};
        sectors.fill(vxfileio::compound::kFree);
        sectors[0] = 0;
        return sectors;
    }();

    static constexpr void Fields(auto& self, auto& body) {
        body(self.signature, self.classID, self.minorVersion, self.majorVersion, self.byteOrder, self.sectorShift,
             self.miniSectorShift, self.reserved, self.directorySectors, self.fatSectors, self.firstDirectorySector,
             self.transactionSignature, self.miniStreamCutOff, self.firstMiniFatSector, self.miniFatSectors,
             self.firstDifatSector, self.difatSectors, self.difat);
    }
};

}  // namespace vxfileio::compound
