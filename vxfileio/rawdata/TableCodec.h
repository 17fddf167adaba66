#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "vxfileio/helpers/Digits.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/ValueText.h"

/// @file
/// Makes layouts from tables of cells, with the code that encodes and decodes their headers.
///
/// Offsets, widths and keys are template arguments, because the header of a segment is encoded or decoded for every
/// system call or two. Included only where `Layouts` is defined.

namespace vxfileio::rawdata {

/// Throws a `CExcVXReader` that names the key unless everything fit.
void RefuseUnlessFitting(const CCellWriter& writer, std::string_view key);

// ---- The cells of one version ---------------------------------------------------------------------------------------

/// Returns whether files of a version have a cell.
template <std::int32_t Version>
struct CIsIn {
    constexpr bool operator()(const auto& row) const { return row.traits.since <= Version; }
};

/// Returns the rows of a table that files of a version have, each with its offset.
template <const auto& Rows, std::int32_t Version>
consteval auto RowsIn() {
    constexpr auto kCount = std::count_if(Rows.begin(), Rows.end(), CIsIn<Version>());
    using CRow = std::remove_cvref_t<decltype(Rows.front())>;
    std::array<CRow, static_cast<std::size_t>(kCount)> cells{};
    std::copy_if(Rows.begin(), Rows.end(), cells.begin(), CIsIn<Version>());
    std::size_t offset = 0;
    for (auto& cell : cells) {
        cell.offset = offset;
        offset += cell.width;
    }
    return cells;
}

/// The same as a constant, which can be a template argument.
template <const auto& Rows, std::int32_t Version>
inline constexpr auto kCellsIn = RowsIn<Rows, Version>();

template <const auto& Rows, std::int32_t Version>
consteval auto HdrIn() {
    constexpr auto& kCells = kCellsIn<Rows, Version>;
    using CRow = std::remove_cvref_t<decltype(Rows.front())>;
    return CHdrLayout<CRow>{kCells, kCells.back().End()};
}

constexpr bool IsListOfChannels(const CRecordingCell& cell) {
    return std::holds_alternative<CChannelList>(cell.member);
}
constexpr bool IsListOfChannels(const auto& /*cell*/) { return false; }

constexpr bool IsOfChannels(const CRecordingCell& cell) {
    return IsListOfChannels(cell) || std::holds_alternative<CChannelCount>(cell.member);
}
constexpr bool IsOfChannels(const auto& /*cell*/) { return false; }

/// Returns the most items that a list in the widest cell can have, at one digit each.
consteval std::size_t MostChannelsIn(const auto& cells) {
    std::size_t most = 0;
    for (const auto& cell : cells) {
        if (!IsListOfChannels(cell)) continue;
        const std::size_t room = cell.width - kCellEndSize - cell.key.size() - 1;
        most = std::max(most, (room + 1) / 2);
    }
    return most;
}

/// A cell of a header in one version. Each has its own type, so that its key is a compile-time constant.
template <const auto& Cells, std::size_t Number>
struct CTableCell {
    static constexpr std::string_view kKey = Cells[Number].key;
    static constexpr std::size_t kOffset = Cells[Number].offset;
    static constexpr std::size_t kWidth = Cells[Number].width;
    static constexpr auto kMember = std::get<Cells[Number].member.index()>(Cells[Number].member);
    static constexpr std::optional<std::string_view> kStandBy = Cells[Number].traits.standBy;
    static constexpr bool kIsOfChannels = IsOfChannels(Cells[Number]);
    static constexpr std::size_t kMostChannels = MostChannelsIn(Cells);
};

/// Calls `act` with each cell as a `CTableCell`, in file order, until it returns false. Returns whether it always
/// returned true.
template <const auto& Cells>
bool ForCells(auto act) {
    return [&]<std::size_t... Numbers>(std::index_sequence<Numbers...>) {
        return (act(CTableCell<Cells, Numbers>()) && ...);
    }
    (std::make_index_sequence<Cells.size()>());
}

// ---- Values to text -------------------------------------------------------------------------------------------------

template <const auto& Cells, class Header>
void EncodeCells(const Header& header, std::span<char> bytes) {
    ForCells<Cells>([&]<class Cell>(Cell) {
        CCellWriter writer(bytes.subspan(Cell::kOffset, Cell::kWidth), Cell::kKey);
        if constexpr (Cell::kStandBy) {
            writer.PutValue(*Cell::kStandBy);
        } else {
            PutMember(writer, header, Cell::kMember);
        }
        RefuseUnlessFitting(writer, Cell::kKey);
        return true;
    });
}

// ---- Text to values -------------------------------------------------------------------------------------------------

inline void FromText(std::string_view text, std::int32_t& value) { value = helpers::ParseInt32(text); }
inline void FromText(std::string_view text, std::int64_t& value) { value = helpers::ParseInt64(text); }
inline void FromText(std::string_view text, std::uint64_t& value) { value = helpers::ParseUInt64(text); }
inline void FromText(std::string_view text, double& value) { value = helpers::ParseDouble(text); }

/// The bytes of a cell to be decoded; fewer if the file ends within it.
template <class Cell>
struct CCellBytes {
    std::string_view bytes;
};

template <class Cell>
void Take(const CCellBytes<Cell>& cell, std::string& value) {
    value = CellValue(cell.bytes);
}

/// Returns the text that the number of a cell begins with. It is that of `CellValue`, found faster in a whole cell that
/// has its key.
template <class Cell>
std::string_view NumberText(std::string_view cell) {
    constexpr std::size_t kStart = Cell::kKey.size() + 1;
    // Blanks before the number could hide a separator that ends the value before its first digit.
    const auto startsNumber = [](char c) { return c == '-' || (c >= '0' && c <= '9'); };
    const bool isPlain = cell.size() == Cell::kWidth &&
                         std::memcmp(cell.data(), Cell::kKey.data(), Cell::kKey.size()) == 0 &&
                         cell[kStart - 1] == '=' && startsNumber(cell[kStart]);
    return isPlain ? std::string_view(cell.data() + kStart, Cell::kWidth - kStart) : CellValue(cell);
}

template <class Cell, class Number>
void Take(const CCellBytes<Cell>& cell, Number& number) {
    const std::string_view text = NumberText<Cell>(cell.bytes);
    if constexpr (std::signed_integral<Number>) {
        const auto value = helpers::ParseShortWhole(text);
        if (value && std::in_range<Number>(*value)) {
            number = static_cast<Number>(*value);
            return;
        }
    }
    FromText(text, number);
}

template <class Cell>
void Take(const CCellBytes<Cell>& cell, std::vector<std::int64_t>& list) {
    list.clear();
    CCellItems items(cell.bytes);
    while (const auto item = items.Next())
        list.push_back(helpers::ParseInt64(*item));
}

template <class Header, class Value>
bool TakeMember(const auto& cell, Header& header, Value Header::*member) {
    Take(cell, header.*member);
    return true;
}

template <class Header>
bool TakeMember(const auto& cell, Header& header, CBareText<Header> member) {
    header.*member.text = CellText(cell.bytes);
    return true;
}

template <class Header>
bool TakeMember(const auto& /*cell*/, Header& /*header*/, std::monostate /*member*/) {
    return true;
}

template <class Cell>
bool TakeMember(const CCellBytes<Cell>& cell, CRawDataRecordingHdr& header, CChannelCount member) {
    std::int32_t count = 0;
    Take(cell, count);
    if (count < 0 || static_cast<std::size_t>(count) > Cell::kMostChannels) return false;
    (header.*member.channels).assign(static_cast<std::size_t>(count), CRawDataChannelInfo());
    return true;
}

/// Interval items have the range of 32 bits in this format, although the field is wider.
inline void TakeChannelItem(std::string_view item, std::int64_t& interval) { interval = helpers::ParseInt32(item); }
void TakeChannelItem(std::string_view item, auto& value) { FromText(item, value); }

bool TakeMember(const auto& cell, CRawDataRecordingHdr& header, CChannelList member) {
    const auto takeAll = [&](auto field) {
        CCellItems items(cell.bytes);
        for (auto& channel : header.*member.channels) {
            const auto item = items.Next();
            if (!item) break;
            TakeChannelItem(*item, channel.*field);
        }
    };
    std::visit(takeAll, member.field);
    return true;
}

/// Decodes a cell. Missing bytes count as NUL.
template <class Cell>
bool DecodeCell(std::string_view bytes, auto& header) {
    constexpr std::size_t kEnd = Cell::kOffset + Cell::kWidth;
    const std::string_view rest = bytes.substr(std::min(Cell::kOffset, bytes.size()));
    const std::string_view cell = bytes.size() < kEnd ? rest : std::string_view(rest.data(), Cell::kWidth);
    return TakeMember(CCellBytes<Cell>{cell}, header, Cell::kMember);
}

template <const auto& Cells>
void DecodeFile(std::string_view bytes, CRawDataFileHdr& header) {
    ForCells<Cells>([&]<class Cell>(Cell) { return DecodeCell<Cell>(bytes, header); });
}

template <const auto& Cells>
void DecodeAllButChannels(std::string_view bytes, CRawDataRecordingHdr& header) {
    ForCells<Cells>([&]<class Cell>(Cell) {
        if constexpr (Cell::kIsOfChannels) return true;
        return DecodeCell<Cell>(bytes, header);
    });
}

template <const auto& Cells>
bool DecodeChannels(std::string_view bytes, CRawDataRecordingHdr& header) {
    return ForCells<Cells>([&]<class Cell>(Cell) {
        if constexpr (!Cell::kIsOfChannels) return true;
        return DecodeCell<Cell>(bytes, header);
    });
}

/// Decodes the cells of a segment header that end within its first `Front` bytes, or the others. Readers call this for
/// each segment, so everything is inlined.
template <const auto& Cells, std::size_t Front, bool InFront>
[[gnu::flatten]] void DecodePart(std::string_view bytes, CSegmentHdr& header) {
    ForCells<Cells>([&]<class Cell>(Cell) {
        if constexpr ((Cell::kOffset + Cell::kWidth <= Front) == InFront) DecodeCell<Cell>(bytes, header);
        return true;
    });
}

/// Decodes the front of a segment header. Returns whether the bytes begin with a whole first cell that has its key.
template <const auto& Cells, std::size_t Front>
bool DecodeFront(std::string_view bytes, CSegmentHdr& header) {
    constexpr std::string_view kKey = Cells.front().key;
    DecodePart<Cells, Front, true>(bytes, header);
    return bytes.size() >= Cells.front().width && std::memcmp(bytes.data(), kKey.data(), kKey.size()) == 0;
}

// ---- Layouts --------------------------------------------------------------------------------------------------------

/// Returns whether a file's version can be found before it is known: everything before it is the same in every version.
consteval bool HaveSameBeginning(const CHdrLayout<CFileCell>& file, const CHdrLayout<CFileCell>& oldest) {
    for (std::size_t row = 0; file.cells[row].key != "FileVersion"; ++row) {
        if (file.cells[row].key != oldest.cells[row].key || file.cells[row].width != oldest.cells[row].width)
            return false;
    }
    return file["FileVersion"].offset == oldest["FileVersion"].offset;
}

/// Returns whether the cells that are rewritten to finish a recording are adjacent, so that one write is enough.
consteval bool LieTogether(const CHdrLayout<CRecordingCell>& recording) {
    return recording["FPosRecordingData"].End() == recording["FPosRecordingTrailer"].offset &&
           recording["FPosRecordingTrailer"].End() == recording["FPosNextRecordingHdr"].offset;
}

/// Returns whether every key used by name exists, and has a number where one is expected: otherwise the code doesn't
/// compile.
consteval bool HasNamedCells(const CLayout& layout) {
    for (const char* key : {"FPosFirstRecordingHdr", "FileVersion", "PreQC", "CompoundTest", "PostQC"})
        if (layout.file[key].width > kMostRewritten) return false;
    for (const char* key : {"TaskName", "Recording", "Dose", "WellIDs", "Ticks", "UnitsPerADs", "ADZeros",
                            "NumberOfWells", "NumberOfAuxCh", "AuxIDs"})
        static_cast<void>(layout.recording[key]);
    for (const char* key : {"ID", "FPosNextSegmentHdr", "TimeFrom", "TimeTo", "Size"})
        static_cast<void>(layout.segment[key]);
    return true;
}

/// The maximum length of a 64-bit number, including its sign.
inline constexpr std::size_t kMostDigits = std::numeric_limits<std::int64_t>::digits10 + 2;

/// Returns whether each cell that holds a position has room for any of them.
consteval bool HasRoomForPositions(const auto& hdr) {
    return std::all_of(hdr.cells.begin(), hdr.cells.end(), [](const auto& cell) {
        return cell.traits.role != ERole::Position || cell.key.size() + 1 + kMostDigits <= cell.width - kCellEndSize;
    });
}

/// Returns whether just the cells whose keys begin "FPos" have the role of a position.
consteval bool HasMarkedPositions(const auto& rows) {
    return std::all_of(rows.begin(), rows.end(), [](const auto& row) {
        return row.key.starts_with("FPos") == (row.traits.role != ERole::Value);
    });
}

template <const auto& Cells>
consteval std::pair<std::size_t, std::size_t> ChannelRange() {
    const auto first = std::find_if(Cells.begin(), Cells.end(), [](const auto& cell) { return IsOfChannels(cell); });
    const auto last = std::find_if(Cells.rbegin(), Cells.rend(), [](const auto& cell) { return IsOfChannels(cell); });
    return {first->offset, last->End() - first->offset};
}

/// Makes the layout of one version, with the code for it.
template <std::int32_t Version, const auto& File, const auto& Recording, const auto& Segment>
consteval CLayout MakeLayout() {
    constexpr auto& kFile = kCellsIn<File, Version>;
    constexpr auto& kRecording = kCellsIn<Recording, Version>;
    constexpr auto& kSegment = kCellsIn<Segment, Version>;
    constexpr auto kSegmentHdr = HdrIn<Segment, Version>();
    constexpr std::size_t kFront = std::max(kSegmentHdr["ID"].End(), kSegmentHdr["FPosNextSegmentHdr"].End());
    constexpr auto kChannels = ChannelRange<kRecording>();
    return {
        .version = Version,
        .file = HdrIn<File, Version>(),
        .recording = HdrIn<Recording, Version>(),
        .segment = kSegmentHdr,
        .segmentFront = kFront,
        .channelsOffset = kChannels.first,
        .channelsSize = kChannels.second,
        .mostChannels = MostChannelsIn(kRecording),
        .codec = {.encodeFile = EncodeCells<kFile, CRawDataFileHdr>,
                  .encodeRecording = EncodeCells<kRecording, CRawDataRecordingHdr>,
                  .encodeSegment = EncodeCells<kSegment, CSegmentHdr>,
                  .decodeFile = DecodeFile<kFile>,
                  .decodeAllButChannels = DecodeAllButChannels<kRecording>,
                  .decodeChannels = DecodeChannels<kRecording>,
                  .decodeFront = DecodeFront<kSegment, kFront>,
                  .decodeRest = DecodePart<kSegment, kFront, false>},
    };
}

/// Makes the layout of one row of `Versions`, and checks what the code relies on.
template <const auto& Versions, std::size_t Index, const auto& File, const auto& Recording, const auto& Segment>
consteval CLayout MakeCheckedLayout() {
    constexpr CVersion kVersion = Versions[Index];
    constexpr CLayout kLayout = MakeLayout<kVersion.number, File, Recording, Segment>();
    static_assert(kVersion.number == static_cast<std::int32_t>(Index) + kOldestVersion, "versions are numbered from 1");
    static_assert(kLayout.file.size == kVersion.fileHdr,
                  "the cells of the file header don't add up to its size in the table of versions");
    static_assert(kLayout.recording.size == kVersion.recordingHdr,
                  "the cells of the recording header don't add up to its size in the table of versions");
    static_assert(kLayout.segment.size == kVersion.segmentHdr,
                  "the cells of the segment header don't add up to its size in the table of versions");
    static_assert(HasNamedCells(kLayout), "a list of the file header is wider than kMostRewritten");
    static_assert(HaveSameBeginning(kLayout.file, HdrIn<File, kOldestVersion>()),
                  "a file's version must have the same place in all versions");
    static_assert(kLayout.file.size <= 4096,
                  "the file header must lie in one page, so that lists are rewritten at once");
    static_assert(HasRoomForPositions(kLayout.file) && HasRoomForPositions(kLayout.recording) &&
                      HasRoomForPositions(kLayout.segment),
                  "the cell of a position must have room for any");
    static_assert(LieTogether(kLayout.recording), "the positions of a recording must lie together");
    static_assert(kLayout.recording["FPosNextRecordingHdr"].End() - kLayout.recording["FPosRecordingData"].offset <=
                  kMostRewritten);
    static_assert(kLayout.segment.size % sizeof(std::uint16_t) == 0, "samples must be aligned after their header");
    static_assert(kLayout.segment.size <= kMostSegmentHdr);
    return kLayout;
}

/// Returns whether no row is of a version that `versions` doesn't list.
consteval bool AreAllListed(const auto& rows, const auto& versions) {
    return std::all_of(rows.begin(), rows.end(),
                       [&](const auto& row) { return row.traits.since <= versions.back().number; });
}

/// Makes the layouts of all versions from the tables, and checks what the code relies on.
template <const auto& Versions, const auto& File, const auto& Recording, const auto& Segment>
consteval auto MakeLayouts() {
    static_assert(AreAllListed(File, Versions) && AreAllListed(Recording, Versions) && AreAllListed(Segment, Versions),
                  "a cell is of a version that the table of versions doesn't list");
    static_assert(HasMarkedPositions(File) && HasMarkedPositions(Recording) && HasMarkedPositions(Segment),
                  "a cell that holds a file offset needs a role, and a key that begins FPos");
    return []<std::size_t... Index>(std::index_sequence<Index...>) {
        return std::array{MakeCheckedLayout<Versions, Index, File, Recording, Segment>()...};
    }
    (std::make_index_sequence<Versions.size()>());
}

}  // namespace vxfileio::rawdata
