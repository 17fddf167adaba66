#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// The offset of each cell in the files of each version. Everything that reads, writes or checks raw data files asks
/// `LayoutOf` or `Layouts`, so a new version reaches all of it.

namespace vxfileio::rawdata {

/// One header in one version. Cells have their offsets set.
template <class Cell>
struct CHdrLayout {
    std::span<const Cell> cells;
    std::size_t size = 0;  ///< Bytes of the header.

    /// Returns the first cell with this key, or null if this version has none.
    constexpr const Cell* Find(std::string_view key) const noexcept {
        for (const Cell& cell : cells) {
            if (cell.key == key) return &cell;
        }
        return nullptr;
    }

    /// Returns the first cell with this key. Requires: this version has one. Keys that code asks for are checked when
    /// layouts are made: a missing one doesn't compile.
    constexpr const Cell& operator[](std::string_view key) const noexcept {
        const Cell* const cell = Find(key);
        if (cell == nullptr) std::abort();
        return *cell;
    }

    /// Returns the index of a cell of this layout.
    constexpr std::size_t RowOf(const Cell& cell) const noexcept {
        return static_cast<std::size_t>(&cell - cells.data());
    }

    /// Returns whether bytes begin with a whole first cell that has the right key, which is all that a reader tests.
    [[nodiscard]] constexpr bool Begins(std::string_view bytes) const noexcept {
        return bytes.size() >= cells.front().width && bytes.starts_with(cells.front().key);
    }
};

/// Returns the bytes of a cell in a header, or as many as there are.
constexpr std::string_view CellIn(const auto& cell, std::string_view header) {
    return header.size() < cell.offset ? std::string_view() : header.substr(cell.offset, cell.width);
}

/// Returns how many bytes a cell has for its value, after its key and `=`.
constexpr std::size_t RoomOf(const auto& cell) {
    return cell.width - kCellEndSize - (cell.key.empty() ? 0 : cell.key.size() + 1);
}

/// The functions that encode and decode the headers of one version. Call them through `HeaderCodec.h`.
struct CCodec {
    void (*encodeFile)(const CRawDataFileHdr& header, std::span<char> bytes);
    void (*encodeRecording)(const CRawDataRecordingHdr& header, std::span<char> bytes);
    void (*encodeSegment)(const CSegmentHdr& header, std::span<char> bytes);
    void (*decodeFile)(std::string_view bytes, CRawDataFileHdr& header);
    void (*decodeAllButChannels)(std::string_view bytes, CRawDataRecordingHdr& header);
    bool (*decodeChannels)(std::string_view bytes, CRawDataRecordingHdr& header);
    bool (*decodeFront)(std::string_view bytes, CSegmentHdr& header);
    void (*decodeRest)(std::string_view bytes, CSegmentHdr& header);
};

/// One version of the format.
struct CLayout {
    std::int32_t version = 0;
    CHdrLayout<CFileCell> file;
    CHdrLayout<CRecordingCell> recording;
    CHdrLayout<CSegmentCell> segment;

    /// The first bytes of a segment header, up to the later one of the well ID and the next position: enough to skip
    /// the segment.
    std::size_t segmentFront = 0;
    /// The bytes of a recording header that describe its channels: the offset of the first and the number of them.
    std::size_t channelsOffset = 0;
    std::size_t channelsSize = 0;
    /// The most items that any list can have, at one digit each. A header that claims more channels is damaged.
    std::size_t mostChannels = 0;

    CCodec codec = {};
};

/// Returns the layouts of all versions, in ascending order. This is the only place that knows which versions exist. A
/// test program that links its own definition has its own versions, in library and tools alike.
std::span<const CLayout> Layouts() noexcept;

/// Returns the layout that reads files of a version: the newest one that isn't newer than the file. A file newer than
/// all layouts is read by the newest one, and a version below 1 by the oldest one.
const CLayout& LayoutOf(std::int32_t version) noexcept;

/// Returns the layout for writing a file whose header names this version: as for reading, but never older than
/// `kOldestWrittenVersion`.
const CLayout& LayoutForWriting(std::int32_t version) noexcept;

/// Returns the layout of a file that begins with these bytes, by its cell `FileVersion`, which has the same offset in
/// all versions. Bytes that are missing count as NUL.
const CLayout& LayoutOfFile(std::string_view bytes) noexcept;

/// Returns the size of the largest file header of all versions: bytes to read before the version is known.
std::size_t LargestFileHdr() noexcept;

}  // namespace vxfileio::rawdata
