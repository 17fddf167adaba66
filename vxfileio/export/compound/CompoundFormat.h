#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// The compound file format with sectors of 512 bytes: sizes, marks and limits.
///
/// A file is one header and then sectors, numbered from 0:
///
///     header | sector 0 | sector 1 | ...
///
/// The FAT has a mark for every sector: its purpose, or the number of the next sector in its chain. A stream is a chain
/// of sectors that ends with a mark. Short streams share one long stream, the mini stream, which is divided into mini
/// sectors and has its own FAT, the mini FAT. The DIFAT lists the sectors of the FAT: the first ones in the header, the
/// others in DIFAT sectors. The directory is a stream of entries, each with a name and the first sector of its content.
/// Numbers are little-endian.

namespace vxfileio::compound {

/// @name Sizes, in bytes
/// @{
inline constexpr std::uint16_t kSectorShift = 9;
inline constexpr std::uint16_t kMiniSectorShift = 6;
inline constexpr std::size_t kSectorSize = std::size_t{1} << kSectorShift;
inline constexpr std::size_t kMiniSectorSize = std::size_t{1} << kMiniSectorShift;
inline constexpr std::size_t kDirectoryEntrySize = 128;
/// Streams of at least this size have their own sectors; shorter ones are in the mini stream.
inline constexpr std::uint32_t kMiniStreamCutOff = 4096;
/// The maximum size of a stream: this version of the format doesn't use the upper half of the 32-bit sizes.
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

/// Marks, or sector numbers, per sector.
inline constexpr std::size_t kMarksPerSector = kSectorSize / sizeof(std::uint32_t);
/// FAT sectors that the header lists.
inline constexpr std::size_t kDifatEntriesInHeader = 109;
/// FAT sectors that a DIFAT sector lists; the number of the next DIFAT sector follows them.
inline constexpr std::size_t kDifatEntriesPerSector = kMarksPerSector - 1;

/// The maximum length of a name in 16-bit units, including the terminating zero.
inline constexpr std::size_t kNameUnits = 32;
/// No sibling, or no child.
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

/// The type of a directory entry.
enum class EEntryType : std::uint8_t { Storage = 1, Stream = 2, Root = 5 };

}  // namespace vxfileio::compound
