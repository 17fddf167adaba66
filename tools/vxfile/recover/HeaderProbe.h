#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "tools/vxfile/recover/WholeCells.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfile {

/// A segment has no more samples than this.
inline constexpr std::int64_t kMostSamples = std::numeric_limits<std::uint32_t>::max();

/// The bytes where a segment header may stand, and what they say.
struct CSegmentProbe {
    std::int64_t position = 0;
    CDamage cells;
    vxfileio::rawdata::CSegmentHdr header;  ///< As a reader would take it.

    /// Tells whether every cell is as a writer leaves it.
    bool IsWhole() const { return cells.damaged.none(); }
    /// Where the samples begin.
    std::int64_t Data() const { return position + static_cast<std::int64_t>(kSegmentHdrSize); }
    /// Where so many samples end.
    std::int64_t EndOf(std::int64_t samples) const;
    /// How far behind its end it leads, which is 0 where nothing was put in or taken out; nothing if it leads nowhere.
    std::optional<std::int64_t> Shift() const;
};

/// The bytes where a recording header may stand.
struct CRecordingProbe {
    std::int64_t position = 0;
    std::int32_t version = kNewestVersion;  ///< Of the layout that fits better.
    std::string bytes;                      ///< As many as a header of that version has.
    CDamage cells;

    /// Tells whether every cell is as a writer leaves it.
    bool IsWhole() const { return cells.damaged.none(); }
    std::int64_t End() const { return position + static_cast<std::int64_t>(Size()); }
    std::size_t Size() const;
    /// Tells whether it is there to its end, and most of its cells are whole, or those that tell what and where it is.
    bool IsCredible() const;
    /// Tells whether it is there to its end and leads right behind it, as writers leave it.
    bool KnowsItsPlace() const;
    /// How far behind its end it leads to its data; nothing if it isn't credible or leads nowhere.
    std::optional<std::int64_t> Shift() const;
    /// Returns a position that a cell tells, or -2 for a cell that is lost.
    std::int64_t Position(std::size_t row) const;
};

/// Looks at positions of a file for headers. It believes nothing but what is there.
class CHeaderProbe {
 public:
    /// The file stays the caller's; `path` is what messages call it.
    CHeaderProbe(const vxfileio::helpers::CFile& file, std::string path)
        : m_file(file), m_path(std::move(path)), m_size(file.Size()) {}

    /// The size that the file had at first; what grows behind it isn't looked at.
    std::int64_t Size() const { return m_size; }

    CSegmentProbe Segment(std::int64_t position) const;
    /// Tries the layout of `version` first, then the other one.
    CRecordingProbe Recording(std::int64_t position, std::int32_t version) const;
    /// Reads so many bytes, or as many as there are. Throws `CFailure` if the system can't read what the file has.
    std::string Read(std::int64_t position, std::size_t size) const;

    /// Tells whether a header begins there, even if part of its cells are damaged or the file ends within it.
    bool LooksLikeHeader(std::int64_t position) const;

    /// Tells whether the last segment of a recording may end there: at the end of the file, ahead of a header, or ahead
    /// of a recording header that is lost, but for its size.
    bool LooksLikeEnd(std::int64_t position) const;

 private:
    const vxfileio::helpers::CFile& m_file;
    std::string m_path;
    std::int64_t m_size;
};

/// @name Times and sizes
/// @{
/// Returns the time from the first sample to the last; nothing if the times are no segment's. One more has 63 bits,
/// too.
std::optional<std::uint64_t> SpanOf(const vxfileio::rawdata::CSegmentHdr& header);
/// Tells whether there is any sample interval with which `Size` goes with the times.
bool IsConsistent(const vxfileio::rawdata::CSegmentHdr& header);
/// Returns the time so many intervals behind another, or ahead of it if they are negative; nothing if there is no such
/// time, or no interval.
std::optional<std::int64_t> TimeBehind(std::int64_t time, std::int64_t intervals, std::int64_t tick);
/// Tells whether `Size` goes with the times at this interval.
bool GoesWith(const vxfileio::rawdata::CSegmentHdr& header, std::int64_t tick);
/// @}

}  // namespace vxfile
