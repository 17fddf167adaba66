#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "vxfileio/base/FileMarks.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

/// @file
/// The raw data format, written once: the versions, and the cells of each header in file order.
///
/// A file is one file header, then recordings, each a header and a chain of segments, each a header and its samples.
/// In version 2:
///
///     file header (1190) | recording header (2460) | segment header (300) samples | segment header samples | ...
///
/// File offsets in the headers point from one to the next. A cell is `key=value`, NUL bytes up to its width less 2, and
/// CR LF. Its width never changes, so it can be rewritten in place.
///
/// One table lists the cells of all versions; each row names the first version that has it. `Layout.h` makes one layout
/// per version from these tables, with offsets and sizes. Writer, reader and tools work from the layouts.

namespace vxfileio::rawdata {

/// A file offset that points nowhere: nothing follows, or nothing has been written there yet.
inline constexpr std::int64_t kUnset = -1;

/// The text that every raw data file begins with. More text may follow in its cell.
inline constexpr std::string_view kFileTypeText = base::kRawDataMark;

/// The header of one segment. Times are inclusive; `Size` counts samples, not bytes.
struct CSegmentHdr {
    std::int32_t ID = 0;  ///< Well ID.
    std::int64_t FPosNextSegmentHdr = kUnset;
    std::int64_t TimeFrom = 0;
    std::int64_t TimeTo = 0;
    std::int64_t Size = 0;
};

/// The content of a cell that holds only a text, without key and `=`.
template <class Header>
struct CBareText {
    std::string Header::*text;
};

/// A list of channels, named by the member that holds it.
using CChannels = std::vector<CRawDataChannelInfo> CRawDataRecordingHdr::*;

/// The content of a cell that holds the number of channels that the lists after it describe.
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

/// What the value of a cell is to code that checks it. Counts and lists of channels are marked by their content
/// instead.
enum class ERole {
    Value,           ///< Anything else.
    Position,        ///< A file offset, or `kUnset`.
    UnusedPosition,  ///< A file offset that is always `kUnset`.
};

/// The version that a row without another one belongs to. Files that claim a lower number are read as this version.
inline constexpr std::int32_t kOldestVersion = 1;

/// The oldest version that is written. A caller's header with a lower number gets this layout all the same.
inline constexpr std::int32_t kOldestWrittenVersion = 2;

/// What most rows have in common.
struct CCellTraits {
    ERole role = ERole::Value;
    /// If set, the writer begins with this value and ignores the member.
    std::optional<std::string_view> standBy = std::nullopt;
    /// The first version whose files have the cell.
    std::int32_t since = kOldestVersion;
};

/// One cell of a header: its key, its width in bytes, and the member that it carries.
template <class Header, class... More>
struct CCell {
    std::string_view key;
    std::size_t width = 0;
    /// What is read into the header, and written from it. Nothing for a cell whose value is always the same.
    std::variant<std::monostate, std::string Header::*, std::int32_t Header::*, std::int64_t Header::*, More...> member;
    CCellTraits traits = {};
    /// Bytes before the cell in its header. Set in layouts only, since versions differ.
    std::size_t offset = 0;

    /// Returns the offset of the byte after the cell.
    constexpr std::size_t End() const { return offset + width; }
};

using CFileCell = CCell<CRawDataFileHdr, CBareText<CRawDataFileHdr>, std::vector<std::int64_t> CRawDataFileHdr::*>;
using CRecordingCell = CCell<CRawDataRecordingHdr, std::uint64_t CRawDataRecordingHdr::*, CChannelCount, CChannelList>;
using CSegmentCell = CCell<CSegmentHdr>;

inline constexpr CCellTraits kPosition = {.role = ERole::Position};
inline constexpr CCellTraits kPositionSetLater = {.role = ERole::Position, .standBy = "-1"};
inline constexpr CCellTraits kEmptyAtFirst = {.standBy = ""};

inline constexpr std::array kFileCells = {
    CFileCell{"", 50, CBareText<CRawDataFileHdr>{&CRawDataFileHdr::HeaderID}},
    CFileCell{"FPosFirstRecordingHdr", 50, &CRawDataFileHdr::FPosFirstRecordingHdr, kPositionSetLater},
    CFileCell{"FileType", 50, &CRawDataFileHdr::FileType},
    CFileCell{"ProgramVersion", 50, &CRawDataFileHdr::ProgramVersion},
    CFileCell{"FileVersion", 30, &CRawDataFileHdr::FileVersion},
    CFileCell{"Guid", 50, &CRawDataFileHdr::Guid},
    CFileCell{"PlateID", 30, &CRawDataFileHdr::PlateID},
    CFileCell{"CompoundID", 30, &CRawDataFileHdr::CompoundID},
    CFileCell{"CompoundName", 200, &CRawDataFileHdr::CompoundName},
    CFileCell{"PreQC", 100, &CRawDataFileHdr::PreQC, kEmptyAtFirst},
    CFileCell{"CompoundTest", 150, &CRawDataFileHdr::CompoundTest, kEmptyAtFirst},
    CFileCell{"PostQC", 100, &CRawDataFileHdr::PostQC, kEmptyAtFirst},
    CFileCell{"CheckSum", 100, &CRawDataFileHdr::CheckSum, {.standBy = "0"}},
    CFileCell{"Reserved", 200, &CRawDataFileHdr::Reserved, kEmptyAtFirst},
};

inline constexpr CChannels kWells = &CRawDataRecordingHdr::WellChannels;
inline constexpr CChannels kAux = &CRawDataRecordingHdr::AuxChannels;

inline constexpr std::array kRecordingCells = {
    CRecordingCell{"TaskName", 50, &CRawDataRecordingHdr::TaskName},
    CRecordingCell{"Recording", 50, &CRawDataRecordingHdr::Recording},
    CRecordingCell{"Dose", 50, &CRawDataRecordingHdr::Dose},
    CRecordingCell{"FPosRecordingData", 50, &CRawDataRecordingHdr::FPosRecordingData, kPositionSetLater},
    CRecordingCell{"FPosRecordingTrailer",
                   50,
                   &CRawDataRecordingHdr::FPosRecordingTrailer,
                   {.role = ERole::UnusedPosition, .standBy = "-1"}},
    CRecordingCell{"FPosNextRecordingHdr", 50, &CRawDataRecordingHdr::FPosNextRecordingHdr, kPositionSetLater},
    CRecordingCell{"RecordingStartTime", 50, &CRawDataRecordingHdr::RecordingStartTime, {.since = 2}},
    CRecordingCell{"RecordingTime", 50, &CRawDataRecordingHdr::RecordingTime},
    CRecordingCell{"NumberOfWells", 30, CChannelCount{kWells}},
    CRecordingCell{"WellIDs", 200, CChannelList{kWells, &CRawDataChannelInfo::ID}},
    CRecordingCell{"Ticks", 200, CChannelList{kWells, &CRawDataChannelInfo::Ticks}},
    CRecordingCell{"UnitsPerADs", 400, CChannelList{kWells, &CRawDataChannelInfo::UnitsPerAD}},
    CRecordingCell{"ADZeros", 200, CChannelList{kWells, &CRawDataChannelInfo::ADZero}},
    CRecordingCell{"NumberOfAuxCh", 30, CChannelCount{kAux}, {.standBy = "0"}},
    CRecordingCell{"AuxIDs", 200, CChannelList{kAux, &CRawDataChannelInfo::ID}, kEmptyAtFirst},
    CRecordingCell{"Ticks", 200, CChannelList{kAux, &CRawDataChannelInfo::Ticks}, kEmptyAtFirst},
    CRecordingCell{"UnitsPerADs", 400, CChannelList{kAux, &CRawDataChannelInfo::UnitsPerAD}, kEmptyAtFirst},
    CRecordingCell{"ADZeros", 200, CChannelList{kAux, &CRawDataChannelInfo::ADZero}, kEmptyAtFirst},
};

inline constexpr std::array kSegmentCells = {
    CSegmentCell{"Type", 50, std::monostate(), {.standBy = "Well"}},
    CSegmentCell{"ID", 50, &CSegmentHdr::ID},
    CSegmentCell{"FPosNextSegmentHdr", 50, &CSegmentHdr::FPosNextSegmentHdr, kPosition},
    CSegmentCell{"TimeFrom", 50, &CSegmentHdr::TimeFrom},
    CSegmentCell{"TimeTo", 50, &CSegmentHdr::TimeTo},
    CSegmentCell{"Size", 50, &CSegmentHdr::Size},
};

/// One version of the format, and the bytes of its headers, added up by hand so that none changes by accident.
struct CVersion {
    std::int32_t number;
    std::size_t fileHdr;
    std::size_t recordingHdr;
    std::size_t segmentHdr;
};

/// All versions, in ascending order.
inline constexpr std::array kVersions = {
    CVersion{1, 1190, 2410, 300},
    CVersion{2, 1190, 2460, 300},
};

/// The bytes of a cell that can't hold text: a NUL that ends it for the reader, then CR LF.
inline constexpr std::string_view kCellEnd{"\0\r\n", 3};
inline constexpr std::size_t kCellEndSize = kCellEnd.size();

/// The most bytes that are rewritten at once: the three positions of a recording, or the widest list of the file
/// header.
inline constexpr std::size_t kMostRewritten = 150;

/// The most bytes that the header of a segment may have, so that it fits on the stack.
inline constexpr std::size_t kMostSegmentHdr = 1000;

}  // namespace vxfileio::rawdata
