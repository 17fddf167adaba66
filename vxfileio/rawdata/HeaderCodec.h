#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "vxfileio/rawdata/Layout.h"

/// @file
/// Whole headers as bytes, in the layout of a version.

namespace vxfileio::rawdata {

/// @name Encoding
/// Each fills `bytes`, which must be as long as the header in this layout. Throws `CExcVXReader` if a value doesn't fit
/// its cell.
/// @{
inline void Encode(const CLayout& layout, const CRawDataFileHdr& header, std::span<char> bytes) {
    layout.codec.encodeFile(header, bytes);
}
inline void Encode(const CLayout& layout, const CRawDataRecordingHdr& header, std::span<char> bytes) {
    layout.codec.encodeRecording(header, bytes);
}
inline void Encode(const CLayout& layout, const CSegmentHdr& header, std::span<char> bytes) {
    layout.codec.encodeSegment(header, bytes);
}
/// @}

/// Returns the beginning of a sentence about a cell that is too small, such as "PreQC has room for 91 bytes, but needs
/// 120".
std::string NeedText(std::string_view key, std::size_t room, std::size_t needed);

/// Returns the rest of the sentence for a cell with a list of `count` wells or values, of which the first `fitting`
/// fit: " for 54 wells; 31 of these wells would fit."
std::string FittingText(std::size_t count, std::size_t fitting, std::string_view items);

/// Fills one cell, for rewriting it; `cell` is exactly as wide as the cell. Throws `CExcVXReader` if the value doesn't
/// fit.
void EncodeCell(std::string_view key, std::string_view value, std::span<char> cell);
void EncodeCell(std::string_view key, std::int64_t value, std::span<char> cell);

/// Does the same for a cell that holds a position. Each has room for any.
void EncodePosition(std::string_view key, std::int64_t position, std::span<char> cell) noexcept;

/// @name Decoding
/// Each sets the fields of `header` from `bytes`, without checking any key. Bytes that are missing count as NUL, so
/// numbers are read as 0 and texts as empty. A list shorter than its count leaves the remaining channels at their
/// defaults.
/// @{
inline void Decode(const CLayout& layout, std::string_view bytes, CRawDataFileHdr& header) {
    layout.codec.decodeFile(bytes, header);
}

/// Decodes the first `layout.segmentFront` bytes of a segment header: enough to skip the segment. Returns whether they
/// begin with a whole first cell that has its key, which is all that a reader tests; the fields are set in any case.
[[nodiscard]] inline bool DecodeFront(const CLayout& layout, std::string_view bytes, CSegmentHdr& header) {
    return layout.codec.decodeFront(bytes, header);
}
/// Decodes the cells after those; `bytes` are the whole header.
inline void DecodeRest(const CLayout& layout, std::string_view bytes, CSegmentHdr& header) {
    layout.codec.decodeRest(bytes, header);
}
inline void Decode(const CLayout& layout, std::string_view bytes, CSegmentHdr& header) {
    static_cast<void>(DecodeFront(layout, bytes, header));
    DecodeRest(layout, bytes, header);
}

/// Decodes all cells of a recording header but those of `ChannelBytes`.
inline void DecodeAllButChannels(const CLayout& layout, std::string_view bytes, CRawDataRecordingHdr& header) {
    layout.codec.decodeAllButChannels(bytes, header);
}
/// Decodes the cells of `ChannelBytes`; `bytes` are the whole header. Returns false, with the header half set, if it
/// claims more channels than any cell can list.
[[nodiscard]] inline bool DecodeChannels(const CLayout& layout, std::string_view bytes, CRawDataRecordingHdr& header) {
    return layout.codec.decodeChannels(bytes, header);
}
/// Decodes both.
[[nodiscard]] inline bool Decode(const CLayout& layout, std::string_view bytes, CRawDataRecordingHdr& header) {
    DecodeAllButChannels(layout, bytes, header);
    return DecodeChannels(layout, bytes, header);
}
/// @}

/// Returns the part of a recording header that describes its channels, or as much of it as there is.
inline std::string_view ChannelBytes(const CLayout& layout, std::string_view bytes) {
    return bytes.size() < layout.channelsOffset ? std::string_view()
                                                : bytes.substr(layout.channelsOffset, layout.channelsSize);
}

}  // namespace vxfileio::rawdata
