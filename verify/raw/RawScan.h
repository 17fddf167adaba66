#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "verify/raw/FileWindow.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/ChainGuard.h"
#include "vxfileio/rawdata/Layout.h"
#include "vxfileio/rawdata/RawDataHeaders.h"
#include "vxfileio/rawdata/SegmentTimes.h"

namespace vxfileio::recovery {
class CWindow;
}

/// @file
/// Raw data files, damaged or not. Where the library's reader refuses a whole file, these classes return what can be
/// read and where it breaks off. They read headers only, never samples.

namespace vxfile {

/// Where and why a chain of positions is broken.
struct CChainBreak {
    enum class EReason { Nowhere, NoHeader, TooManyChannels, Circle };

    EReason reason;
    std::int64_t position;  ///< The position in the cell that should point to the next header.
    std::int64_t cell;      ///< The file offset of that cell.
};

/// One recording and the file offset of its header.
struct CRecordingAt {
    std::int64_t position = 0;
    CRawDataRecordingHdr header;

    /// Returns true if the writer has set the position of its data.
    bool IsFinished() const { return header.FPosRecordingData != vxfileio::rawdata::kUnset; }
};

/// One segment and the file offset of its header.
struct CSegmentAt {
    std::int64_t position = 0;
    vxfileio::rawdata::CSegmentHdr header;
    std::string_view bytes;  ///< The bytes of the header, up to the end of the file; valid until the window moves.
    const vxfileio::rawdata::CLayout* layout = nullptr;  ///< The layout of the file; never null.

    std::int64_t DataPosition() const { return DataOf(*layout, position); }
    std::uint32_t Samples() const { return SamplesOf(header); }
    /// Returns the offset after the samples; the file may end earlier.
    std::int64_t End() const { return EndOf(*layout, position, header); }
};

/// A file and its headers. The constructor reads the recording headers, but no segments.
class CRawScan {
 public:
    /// Throws `CFailure` if the file can't be opened or doesn't begin with the mark of a raw data file.
    explicit CRawScan(const std::string& path);

    const vxfileio::helpers::CFile& File() const { return m_file; }
    /// Returns the window that walks use.
    CFileWindow& Window() const { return m_window; }
    /// The size of the file after its recording headers were read: everything that a finished recording points to lies
    /// within it, even if a writer has appended more since.
    std::int64_t Size() const { return m_size; }
    /// Returns true if the position lies within the file, with what was appended by now.
    bool HasByteAt(std::int64_t position) const {
        return position >= 0 && (position < m_size || position < m_file.Size());
    }
    /// Returns true if the file has grown since it was opened: its writer is still at work.
    bool IsGrowing() const { return m_file.Size() > m_openedSize; }
    const CRawDataFileHdr& Header() const { return m_header; }
    /// The layout of this file's version.
    const vxfileio::rawdata::CLayout& Layout() const { return *m_layout; }
    /// All recordings that the chain reaches, in its order.
    const std::vector<CRecordingAt>& Recordings() const { return m_recordings; }
    /// Why there are no more recordings; nothing if the chain ends as it should.
    const std::optional<CChainBreak>& Break() const { return m_break; }

    /// The bytes of each header in this file's version.
    std::int64_t FileHdrSize() const { return static_cast<std::int64_t>(m_layout->file.size); }
    std::int64_t RecordingHdrSize() const { return static_cast<std::int64_t>(m_layout->recording.size); }
    std::int64_t SegmentHdrSize() const { return static_cast<std::int64_t>(m_layout->segment.size); }
    /// Returns the end of a recording's header, where its first segment is if it has one.
    std::int64_t DataPosition(const CRecordingAt& recording) const { return recording.position + RecordingHdrSize(); }

    /// @name What is at a position
    /// Each returns true if the first cell of such a header is there.
    /// @{
    bool HasRecordingAt(std::int64_t position) const;
    bool HasSegmentAt(std::int64_t position) const;
    bool HasHeaderAt(std::int64_t position) const { return HasSegmentAt(position) || HasRecordingAt(position); }
    /// @}

    /// Reads `size` bytes; fewer at the end of the file.
    std::string ReadBytes(std::int64_t position, std::size_t size) const;

 private:
    std::optional<CChainBreak::EReason> ReadRecording(std::int64_t position);
    void WalkRecordings();

    vxfileio::helpers::CFile m_file;
    mutable CFileWindow m_window{m_file};
    std::int64_t m_openedSize = 0;
    std::int64_t m_size = 0;
    const vxfileio::rawdata::CLayout* m_layout = nullptr;  ///< Never null once the file is open.
    CRawDataFileHdr m_header;
    std::vector<CRecordingAt> m_recordings;
    std::optional<CChainBreak> m_break;
};

/// Walks one chain of segments through the window of its file.
class CSegmentWalk {
 public:
    /// `first` is the position of the first segment, and `cell` the offset of the cell that has it. In an unfinished
    /// recording the chain also continues with a segment that follows its end: a writer appends it before it sets the
    /// position that points to it.
    CSegmentWalk(const CRawScan& scan, std::int64_t first, std::int64_t cell, bool isUnfinished = false);

    /// Reads the headers through a window that also reads the samples, so that the file is read once. The caller owns
    /// the window, which must outlive the walk.
    void ReadThrough(vxfileio::recovery::CWindow& window) { m_sampleWindow = &window; }

    /// Moves to the next segment. Returns null at the end of the chain or where it is broken. The segment is valid
    /// until the next call.
    const CSegmentAt* Next();

    /// Why there are no more segments; nothing if the chain ends as it should.
    const std::optional<CChainBreak>& Break() const { return m_break; }

 private:
    std::string_view HeaderBytes(std::int64_t position);
    std::size_t BytesAhead() const;

    const CRawScan& m_scan;
    const vxfileio::rawdata::CLayout& m_layout;
    std::int64_t m_nextCell;  ///< Offset in a header of the cell that points to the next segment.
    vxfileio::rawdata::CChainGuard m_guard;
    std::int64_t m_next;
    std::int64_t m_cell;
    CSegmentAt m_segment;
    std::optional<CChainBreak> m_break;
    bool m_isUnfinished;
    std::int64_t m_segmentBytes = 0;                        ///< The size of the last segment, header and samples.
    vxfileio::recovery::CWindow* m_sampleWindow = nullptr;  ///< Null if only headers are read.
};

/// Limits the number of segments of all recordings together to what fits in the file. Stops a walk through all chains
/// in time if damage makes them share segments.
class CSegmentBudget {
 public:
    explicit CSegmentBudget(const CRawScan& scan) : m_left(scan.Size() / scan.SegmentHdrSize() + 1) {}

    /// Counts one more segment. Returns false if the file can't have that many.
    bool Take() { return m_left-- > 0; }

 private:
    std::int64_t m_left;
};

/// Returns the walk along a recording's own chain; it has no segment if the recording isn't finished.
CSegmentWalk SegmentsOf(const CRawScan& scan, const CRecordingAt& recording);

/// Returns the walk along the segments after the header of an unfinished recording.
CSegmentWalk SegmentsAfter(const CRawScan& scan, const CRecordingAt& recording);

/// Returns the walk along the segments of a recording, finished or not.
CSegmentWalk AllSegmentsOf(const CRawScan& scan, const CRecordingAt& recording);

/// Returns true if a finished recording has no segments: its position points to what follows it, not to a segment.
bool IsWithoutSegments(const CRawScan& scan, const CRecordingAt& recording);

/// Returns the name of a recording for messages, such as `recording 2 (Series 1)`; `index` counts from 0.
std::string NameOf(const CRecordingAt& recording, std::size_t index);

}  // namespace vxfile
