#include <array>
#include <cstddef>

#include "vxfileio/rawdata/TableCodec.h"

/// @file
/// Adds a version 3 to versions 1 and 2. These layouts replace the library's in any program that links this file. Each
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

constexpr CCellTraits kNew = {.since = 3};

constexpr auto kMoreFileCells = With(With(kFileCells, 14, {"LotID", 40, &CRawDataFileHdr::CompoundID, kNew}), 8,
                                     {"Operator", 50, &CRawDataFileHdr::Guid, kNew});

constexpr auto kMoreRecordingCells =
    With(With(With(kRecordingCells, 18, {"Note", 60, &CRawDataRecordingHdr::TaskName, kNew}), 10,
              {"Length", 50, &CRawDataRecordingHdr::RecordingTime, kNew}),
         0, {"Run", 50, &CRawDataRecordingHdr::Recording, kNew});

constexpr auto kMoreSegmentCells = With(With(With(kSegmentCells, 6, {"Samples", 40, &CSegmentHdr::Size, kNew}), 3,
                                             {"Begin", 30, &CSegmentHdr::TimeFrom, kNew}),
                                        0, {"Kind", 50, std::monostate(), {.standBy = "Segment", .since = 3}});

constexpr std::array kThreeVersions = {kVersions[0], kVersions[1], CVersion{3, 1280, 2620, 420}};

}  // namespace

std::span<const CLayout> Layouts() noexcept {
    static constexpr auto kLayouts =
        MakeLayouts<kThreeVersions, kMoreFileCells, kMoreRecordingCells, kMoreSegmentCells>();
    return kLayouts;
}

}  // namespace vxfileio::rawdata
