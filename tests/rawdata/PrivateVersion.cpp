#include <array>
#include <cstddef>

#include "vxfileio/rawdata/TableCodec.h"

/// @file
/// Adds a version after the newest. These layouts replace the library's in any program that links this file. Each
/// header has a new cell in the middle and one at its end; recording and segment headers have another one at the front.

namespace vxfileio::rawdata {

namespace {

/// Returns the rows with one more, inserted at this index.
template <class Row, std::size_t Size>
consteval std::array<Row, Size + 1> With(const std::array<Row, Size>& rows, std::size_t at, const Row& row) {
    std::array<Row, Size + 1> more{};
    for (std::size_t i = 0; i < more.size(); ++i)
        more[i] = i < at ? rows[i] : i == at ? row : rows[i - 1];
    return more;
}

constexpr CVersion kNewest = kVersions.back();
constexpr CVersion kPrivate = {kNewest.number + 1, kNewest.fileHdr + 90, kNewest.recordingHdr + 160,
                               kNewest.segmentHdr + 120};

constexpr CCellTraits kNew = {.since = kPrivate.number};

constexpr auto kMoreFileCells =
    With(With(kFileCells, kFileCells.size(), {"LotID", 40, &CRawDataFileHdr::CompoundID, kNew}), 8,
         {"Operator", 50, &CRawDataFileHdr::Guid, kNew});

constexpr auto kMoreRecordingCells =
    With(With(With(kRecordingCells, kRecordingCells.size(), {"Note", 60, &CRawDataRecordingHdr::TaskName, kNew}), 10,
              {"Length", 50, &CRawDataRecordingHdr::RecordingTime, kNew}),
         0, {"Run", 50, &CRawDataRecordingHdr::Recording, kNew});

constexpr auto kMoreSegmentCells =
    With(With(With(kSegmentCells, kSegmentCells.size(), {"Samples", 40, &CSegmentHdr::Size, kNew}), 3,
              {"Begin", 30, &CSegmentHdr::TimeFrom, kNew}),
         0, {"Kind", 50, std::monostate(), {.standBy = "Segment", .since = kPrivate.number}});

constexpr auto kMoreVersions = With(kVersions, kVersions.size(), kPrivate);

}  // namespace

std::span<const CLayout> Layouts() noexcept {
    static constexpr auto kLayouts =
        MakeLayouts<kMoreVersions, kMoreFileCells, kMoreRecordingCells, kMoreSegmentCells>();
    return kLayouts;
}

}  // namespace vxfileio::rawdata
