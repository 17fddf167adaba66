#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// The compound file format in its version with sectors of 512 bytes: sizes, marks and limits, said once.
///
/// A file is one header and then sectors, numbered from 0:
///
///     header | sector 0 | sector 1 | ...
///
/// The FAT has a mark for every sector: what it is, or which sector goes on behind it. A stream is a chain of sectors
/// that ends in a mark. Short streams share one long stream, the mini stream, which is cut into mini sectors in turn
/// and has a FAT of its own, the mini FAT. The DIFAT lists the sectors of the FAT: the first of them in the header,
/// further ones in sectors of the DIFAT. The directory is a stream of entries, each with a name and the first sector of
/// what it names. Numbers have their least significant byte first.

namespace vxfileio::compound {

/// @name Sizes, in bytes
/// @{
inline constexpr std::uint16_t kSectorShift = 9;
inline constexpr std::uint16_t kMiniSectorShift = 6;
inline constexpr std::size_t kSectorSize = std::size_t{1} << kSectorShift;
inline constexpr std::size_t kMiniSectorSize = std::size_t{1} << kMiniSectorShift;
inline constexpr std::size_t kDirectoryEntrySize = 128;
/// A stream of this size or more has sectors of its own; a shorter one goes to the mini stream.
inline constexpr std::uint32_t kMiniStreamCutOff = 4096;
/// The most that a stream holds: in this version of the format the upper half of the 32-bit sizes isn't used.
inline constexpr std::size_t kMostStreamSize = std::size_t{1} << 31;
/// @}

/// @name Marks of the FAT and the mini FAT
/// Any other mark is the number of the next sector.
/// @{
inline constexpr std::uint32_t kFree = 0xFFFFFFFF;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
/// @}

/// Marks, or sector numbers, in one sector.
inline constexpr std::size_t kMarksPerSector = kSectorSize / sizeof(std::uint32_t);
/// FAT sectors that the header lists.
inline constexpr std::size_t kDifatEntriesInHeader = 109;
/// FAT sectors that a sector of the DIFAT lists; after them it has the number of the next DIFAT sector.
inline constexpr std::size_t kDifatEntriesPerSector = kMarksPerSector - 1;

/// 16-bit units of a name, with the zero that ends it.
inline constexpr std::size_t kNameUnits = 32;
/// No sibling, or no child.
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

/// What a directory entry names.
enum class EEntryType : std::uint8_t { Storage = 1, Stream = 2, Root = 5 };

}  // namespace vxfileio::compound
