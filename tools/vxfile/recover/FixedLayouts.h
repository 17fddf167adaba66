#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "vxfileio/rawdata/HeaderCodec.h"

/// @file
/// The two layouts that recovery knows, by the tables of all cells: it makes files of version 2 and looks for headers
/// of versions 1 and 2.

namespace vxfile {

/// The version that recovered files have.
inline constexpr std::int32_t kNewestVersion = 2;

inline constexpr std::size_t kFileHdrSize = 1190;
inline constexpr std::size_t kRecordingHdrSize = 2460;
inline constexpr std::size_t kSegmentHdrSize = 300;
inline constexpr std::size_t kMostChannels = 193;

/// Tells whether files of a version have the cell.
constexpr bool HasCell(const auto& cell, std::int32_t version) {
    return cell.traits.since == vxfileio::rawdata::kOldestVersion || version >= cell.traits.since;
}

/// Returns the bytes of a header.
constexpr std::size_t SizeOf(const auto& cells, std::int32_t version = kNewestVersion) {
    std::size_t size = 0;
    for (const auto& cell : cells)
        size += HasCell(cell, version) ? cell.width : 0;
    return size;
}

inline const vxfileio::rawdata::CLayout& RecoveredLayout() { return vxfileio::rawdata::LayoutOf(kNewestVersion); }

}  // namespace vxfile
