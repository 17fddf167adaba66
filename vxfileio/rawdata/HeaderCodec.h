#pragma once

#include <span>
#include <string_view>

#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// Whole headers as bytes, by the tables of the format.

namespace vxfileio::rawdata {

/// @name Encoding
/// Each fills `bytes`, which is as long as the header, from the first cell to the last. Throws `CExcVXReader` if a
/// value doesn't fit its cell.
/// @{
void Encode(const CRawDataFileHdr& header, std::span<char, kFileHdrSize> bytes);
void Encode(const CRawDataRecordingHdr& header, std::span<char, kRecordingHdrSize> bytes);
void Encode(const CSegmentHdr& header, std::span<char, kSegmentHdrSize> bytes);
/// @}

/// Fills one cell, as wide as its place says, for rewriting it. Throws `CExcVXReader` if the value doesn't fit.
void EncodeCell(const CCellPlace& place, std::string_view value, std::span<char> cell);
void EncodeCell(const CCellPlace& place, std::int64_t value, std::span<char> cell);

/// @name Decoding
/// Each sets the fields of `header` from `bytes`, taking every cell on trust. A list shorter than its count leaves the
/// remaining channels as they are.
/// @{
void Decode(std::string_view bytes, CRawDataFileHdr& header);
void Decode(std::string_view bytes, CSegmentHdr& header);

/// The first `kSegmentFrontSize` bytes of a segment's header, which are all that who passes over it has to know.
void DecodeFront(std::string_view bytes, CSegmentHdr& header);
/// The cells behind those; `bytes` are the whole header.
void DecodeRest(std::string_view bytes, CSegmentHdr& header);

/// `version` is the file's own. Returns false, with the header half set, if it claims more channels than any cell can
/// list.
bool Decode(std::string_view bytes, std::int32_t version, CRawDataRecordingHdr& header);

/// The first half of that, which can't fail.
void DecodeAllButChannels(std::string_view bytes, std::int32_t version, CRawDataRecordingHdr& header);

/// The other half; `bytes` are those of `ChannelBytes`.
bool DecodeChannels(std::string_view bytes, CRawDataRecordingHdr& header);
/// @}

/// Returns the cells of a recording header that describe its channels; they stand together at its end.
std::string_view ChannelBytes(std::string_view bytes, std::int32_t version);

}  // namespace vxfileio::rawdata
