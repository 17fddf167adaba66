#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// The raw data format, said once: the cells of each header in their order, with key, width and content.
///
/// A file is one file header, then recordings, each a header and a chain of segments, each a header and its samples:
///
///     file header (1190) | recording header (2460) | segment header (300) samples | segment header samples | ...
///
/// Positions in the headers lead from one to the next. A cell is `key=value`, NUL bytes up to its width less 2, and
/// CR LF; it is always exactly as wide as told here, so that it can be rewritten in place. Writer and reader walk these
/// tables; offsets and sizes come out of them.

namespace vxfileio::rawdata {

/// A file position that leads nowhere: nothing follows, or nothing has been written there yet.
inline constexpr std::int64_t kUnset = -1;

/// How every raw data file begins. More text may follow in its cell.
inline constexpr std::string_view kFileTypeText = "OVL Vexaprobe";

/// The header of one segment. Times are inclusive; `Size` counts samples, not bytes.
struct CSegmentHdr {
    std::int32_t ID = 0;  ///< Well ID.
    std::int64_t FPosNextSegmentHdr = kUnset;
    std::int64_t TimeFrom = 0;
    std::int64_t TimeTo = 0;
    std::int64_t Size = 0;
};

/// The content of a cell that holds nothing but a text, without key and `=`.
template <class Header>
struct CBareText {
    std::string Header::*text;
};

/// A list of channels, by the member that holds it.
using CChannels = std::vector<CRawDataChannelInfo> CRawDataRecordingHdr::*;

/// The content of a cell that tells how many channels the lists behind it describe.
struct CChannelCount {
    CChannels channels;
};

/// The content of a cell that lists one field of every channel.
struct CChannelList {
    CChannels channels;
    std::variant<std::int32_t CRawDataChannelInfo::*, std::int64_t CRawDataChannelInfo::*,
                 double CRawDataChannelInfo::*>
        field;
};

/// One cell of a header: its key, its width in bytes, and the member that it carries.
template <class Header, class... More>
struct CCell {
    std::string_view key;
    std::size_t width = 0;
    /// What is read into the header, and written from it; nothing for a cell whose value is always the same.
    std::variant<std::monostate, std::string Header::*, std::int32_t Header::*, std::int64_t Header::*, More...> member;
    /// If set, the writer begins with this value, whatever the header holds.
    std::optional<std::string_view> standBy = std::nullopt;
    /// The first version of the format whose files have the cell; most cells are in all, whatever number a file claims.
    /// Written files have every cell.
    std::int32_t sinceVersion = std::numeric_limits<std::int32_t>::min();
};

using CFileCell = CCell<CRawDataFileHdr, CBareText<CRawDataFileHdr>, std::vector<std::int64_t> CRawDataFileHdr::*>;
using CRecordingCell = CCell<CRawDataRecordingHdr, std::uint64_t CRawDataRecordingHdr::*, CChannelCount, CChannelList>;
using CSegmentCell = CCell<CSegmentHdr>;

inline constexpr std::array kFileCells = {
    CFileCell{"", 50, CBareText<CRawDataFileHdr>{&CRawDataFileHdr::HeaderID}},
    CFileCell{"FPosFirstRecordingHdr", 50, &CRawDataFileHdr::FPosFirstRecordingHdr, "-1"},
    CFileCell{"FileType", 50, &CRawDataFileHdr::FileType},
    CFileCell{"ProgramVersion", 50, &CRawDataFileHdr::ProgramVersion},
    CFileCell{"FileVersion", 30, &CRawDataFileHdr::FileVersion},
    CFileCell{"Guid", 50, &CRawDataFileHdr::Guid},
    CFileCell{"PlateID", 30, &CRawDataFileHdr::PlateID},
    CFileCell{"CompoundID", 30, &CRawDataFileHdr::CompoundID},
    CFileCell{"CompoundName", 200, &CRawDataFileHdr::CompoundName},
    CFileCell{"PreQC", 100, &CRawDataFileHdr::PreQC, ""},
    CFileCell{"CompoundTest", 150, &CRawDataFileHdr::CompoundTest, ""},
    CFileCell{"PostQC", 100, &CRawDataFileHdr::PostQC, ""},
    CFileCell{"CheckSum", 100, &CRawDataFileHdr::CheckSum, "0"},
    CFileCell{"Reserved", 200, &CRawDataFileHdr::Reserved, ""},
};

inline constexpr CChannels kWells = &CRawDataRecordingHdr::WellChannels;
inline constexpr CChannels kAux = &CRawDataRecordingHdr::AuxChannels;

inline constexpr std::array kRecordingCells = {
    CRecordingCell{"TaskName", 50, &CRawDataRecordingHdr::TaskName},
    CRecordingCell{"Recording", 50, &CRawDataRecordingHdr::Recording},
    CRecordingCell{"Dose", 50, &CRawDataRecordingHdr::Dose},
    CRecordingCell{"FPosRecordingData", 50, &CRawDataRecordingHdr::FPosRecordingData, "-1"},
    CRecordingCell{"FPosRecordingTrailer", 50, &CRawDataRecordingHdr::FPosRecordingTrailer, "-1"},
    CRecordingCell{"FPosNextRecordingHdr", 50, &CRawDataRecordingHdr::FPosNextRecordingHdr, "-1"},
    CRecordingCell{"RecordingStartTime", 50, &CRawDataRecordingHdr::RecordingStartTime, std::nullopt, 2},
    CRecordingCell{"RecordingTime", 50, &CRawDataRecordingHdr::RecordingTime},
    CRecordingCell{"NumberOfWells", 30, CChannelCount{kWells}},
    CRecordingCell{"WellIDs", 200, CChannelList{kWells, &CRawDataChannelInfo::ID}},
    CRecordingCell{"Ticks", 200, CChannelList{kWells, &CRawDataChannelInfo::Ticks}},
    CRecordingCell{"UnitsPerADs", 400, CChannelList{kWells, &CRawDataChannelInfo::UnitsPerAD}},
    CRecordingCell{"ADZeros", 200, CChannelList{kWells, &CRawDataChannelInfo::ADZero}},
    CRecordingCell{"NumberOfAuxCh", 30, CChannelCount{kAux}, "0"},
    CRecordingCell{"AuxIDs", 200, CChannelList{kAux, &CRawDataChannelInfo::ID}, ""},
    CRecordingCell{"Ticks", 200, CChannelList{kAux, &CRawDataChannelInfo::Ticks}, ""},
    CRecordingCell{"UnitsPerADs", 400, CChannelList{kAux, &CRawDataChannelInfo::UnitsPerAD}, ""},
    CRecordingCell{"ADZeros", 200, CChannelList{kAux, &CRawDataChannelInfo::ADZero}, ""},
};

inline constexpr std::array kSegmentCells = {
    CSegmentCell{"Type", 50, std::monostate(), "Well"},
    CSegmentCell{"ID", 50, &CSegmentHdr::ID},
    CSegmentCell{"FPosNextSegmentHdr", 50, &CSegmentHdr::FPosNextSegmentHdr},
    CSegmentCell{"TimeFrom", 50, &CSegmentHdr::TimeFrom},
    CSegmentCell{"TimeTo", 50, &CSegmentHdr::TimeTo},
    CSegmentCell{"Size", 50, &CSegmentHdr::Size},
};

/// The version rule: whether files of this version have the cell. It decides for reading only.
constexpr bool HasCell(const auto& cell, std::int32_t version) { return version >= cell.sinceVersion; }

/// The version whose files have every cell; what is written is laid out like this.
inline constexpr std::int32_t kNewestVersion = 2;

/// Returns the bytes of a header.
constexpr std::size_t SizeOf(const auto& cells, std::int32_t version = kNewestVersion) {
    std::size_t size = 0;
    for (const auto& cell : cells)
        size += HasCell(cell, version) ? cell.width : 0;
    return size;
}

/// Where a cell stands in its header, and what it is called there.
struct CCellPlace {
    std::string_view key;
    std::size_t offset = 0;
    std::size_t width = 0;
};

/// Returns the number of the first cell with this key, for constants: a key that no cell has doesn't compile.
constexpr std::size_t NumberOf(const auto& cells, std::string_view key) {
    std::size_t number = 0;
    while (cells[number].key != key)
        ++number;
    return number;
}

/// Returns the place of the first cell with this key.
consteval CCellPlace PlaceOf(const auto& cells, std::string_view key) {
    const std::size_t number = NumberOf(cells, key);
    return {cells[number].key, SizeOf(std::span(cells).first(number)), cells[number].width};
}

inline constexpr std::size_t kFileHdrSize = SizeOf(kFileCells);
inline constexpr std::size_t kRecordingHdrSize = SizeOf(kRecordingCells);
inline constexpr std::size_t kSegmentHdrSize = SizeOf(kSegmentCells);

/// The cells of a segment's header that tell its well and where the next one stands; they lie at its beginning.
inline constexpr std::size_t kSegmentFrontSize = 150;
static_assert(PlaceOf(kSegmentCells, "ID").offset < kSegmentFrontSize);
static_assert(PlaceOf(kSegmentCells, "TimeFrom").offset == kSegmentFrontSize);

static_assert(kFileHdrSize == 1190);
static_assert(kRecordingHdrSize == 2460);
static_assert(kSegmentHdrSize == 300);

/// The bytes of a cell that can't hold text: a NUL that ends it for the reader, then CR LF.
inline constexpr std::string_view kCellEnd{"\0\r\n", 3};
inline constexpr std::size_t kCellEndSize = kCellEnd.size();

/// The cells that describe the channels of a recording, from the number of wells on; every version has them all.
inline constexpr std::size_t kFirstChannelCell = [] {
    std::size_t cell = 0;
    while (!std::holds_alternative<CChannelCount>(kRecordingCells[cell].member))
        ++cell;
    return cell;
}();

/// The most items that a list in the widest cell can have, at one digit each. A header that claims more is damaged.
inline constexpr std::size_t kMostChannels = [] {
    std::size_t most = 0;
    for (const auto& cell : kRecordingCells) {
        if (!std::holds_alternative<CChannelList>(cell.member)) continue;
        const std::size_t room = cell.width - kCellEndSize - cell.key.size() - 1;
        most = std::max(most, (room + 1) / 2);
    }
    return most;
}();

}  // namespace vxfileio::rawdata
