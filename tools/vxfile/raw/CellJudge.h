#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/report/Findings.h"
#include "vxfileio/rawdata/Layout.h"

/// @file
/// The cells of a raw data file's headers, held against what the format fixes of them: key, value as it is written,
/// padding, line end, and that lists are as long as they should be. What values mean together is judged elsewhere.

namespace vxfile {

/// The header whose cells are judged.
struct CHeaderPlace {
    std::string name;         ///< Such as "file header".
    std::int64_t offset = 0;  ///< Where it stands.
};

/// The wells of a recording as its lists tell them, even if the count ahead of them is damaged.
struct CListedWells {
    std::vector<CRawDataChannelInfo> wells;  ///< As many as the list of their IDs has.
    std::size_t intervals = 0;               ///< So many of them have a sample interval.
};

/// @name Judging one header
/// `bytes` is what the file has of it, in this layout; a header that the end of the file cuts is one finding, and its
/// wells aren't known.
/// @{
void JudgeFileCells(const vxfileio::rawdata::CLayout& layout, std::string_view bytes, const CHeaderPlace& place,
                    CFindings& findings);
CListedWells JudgeRecordingCells(const vxfileio::rawdata::CLayout& layout, std::string_view bytes,
                                 const CHeaderPlace& place, CFindings& findings);
void JudgeSegmentCells(const vxfileio::rawdata::CLayout& layout, std::string_view bytes, const CHeaderPlace& place,
                       CFindings& findings);
/// @}

/// Tells whether the header of a segment is right to the byte. It is much faster than judging its cells.
bool IsExactSegmentHdr(const vxfileio::rawdata::CLayout& layout, std::string_view bytes);

}  // namespace vxfile
