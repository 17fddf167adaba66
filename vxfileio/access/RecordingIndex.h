#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "vxfileio/access/SampleSelection.h"
#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfileio::access {
class CInternals;
struct CIndexData;
}  // namespace vxfileio::access

/// One segment of a recording, as its header describes it.
struct CSegmentInfo {
    std::int32_t WellID = 0;    ///< The well.
    std::uint32_t Samples = 0;  ///< Number of samples; a cut file may end before the last.
    std::int64_t TimeFrom = 0;  ///< Time of the first sample.
    std::int64_t TimeTo = 0;    ///< Time of the last sample, or up to less than one interval later.
    std::int64_t Offset = -1;   ///< Of the first sample: bytes from the start of the file.

    /// Compares all members.
    bool operator==(const CSegmentInfo&) const = default;
};

/// How `CRawDataFile::ReadIndex` treats a recording that isn't finished and whole. By default it refuses both.
struct CIndexOptions {
    /// Whether to read a recording that its writer has not finished, as far as whole segments go.
    bool Unfinished = false;
    /// Whether to keep the segments before a damaged one instead of throwing; `GetDamage` then has the failure.
    bool UpToDamage = false;
};

/// The segments of one recording: well, times, samples and offset of each. `CRawDataFile::ReadIndex` makes it.
///
/// Takes 32 bytes per segment, and keeps its file open. Immutable: all operations may run at the same time in any
/// number of threads, on one object or several. Copying is cheap.
class VXFILEIO_API CRecordingIndex {
 public:
    /// Returns the header of the recording, as it was when the file was opened. The reference is valid as long as this
    /// object, one of its copies or the `CRawDataFile`.
    const CRawDataRecordingHdr& GetRecordingHdr() const noexcept;

    /// Returns each well once: those that the recording header lists, in its order, then any others that have segments,
    /// in the order of the file. If the header lists a well twice, the first entry counts. The others have the interval
    /// 0 and NaN units per step. The units are also NaN if the header's `UnitsPerAD` or `ADZero` of a well isn't a
    /// number; `GetRecordingHdr` then has what readers take instead. The reference is valid as long as this object or
    /// one of its copies.
    const std::vector<CRawDataChannelInfo>& GetWells() const noexcept;

    /// Returns the number of segments.
    std::size_t GetSegmentCount() const noexcept;

    /// Returns one segment, counted from 0 in the order of the file. Requires: `number` is below `GetSegmentCount()`.
    CSegmentInfo GetSegment(std::size_t number) const noexcept;

    /// Reads the samples of one segment into the caller's buffer. Those beyond the end of a cut file are 0. Requires:
    /// `number` is below `GetSegmentCount()`. Throws `CExcVXReader` with "The buffer doesn't match the segment." unless
    /// the buffer has room for exactly its samples, and as `CSampleSelection::Read` does if they can't be read.
    void ReadSegment(std::size_t number, std::span<std::uint16_t> samples) const;

    /// Returns the number of samples of all segments that are certainly in the file.
    ///
    /// In a finished recording, these are all except those beyond the end of a cut file. In an unfinished one, all
    /// segments are whole as far as the size of the file tells. The last one doesn't count if no position leads to it
    /// yet, because its writer, or the system it runs on, may still be busy with its bytes.
    std::uint64_t GetCertainSamples() const noexcept;

    /// Returns the text of the failure after the last segment, with which `CIRawDataReader::ReadSegment` ends there.
    /// Empty unless `CIndexOptions::UpToDamage` was set and the recording is damaged. The reference is valid as long as
    /// this object or one of its copies.
    const std::string& GetDamage() const noexcept;

    /// Selects samples, counts them and finds the runs. Doesn't read the file. Takes O(segments in the recording).
    ///
    /// The interval between the samples of a well is that of the recording header. If that has none above 0, the times
    /// and the number of samples of each segment decide.
    ///
    /// Throws `CExcVXReader` with "Error reading Data Segment Header" if the samples of a selected segment reach
    /// further beyond the end of the file than the file is long (at least 16 MiB), as `CIRawDataReader::ReadSegment`
    /// does there. Also throws it if all together are that much more than the file has room for, because several
    /// segments claim the same bytes.
    CSampleSelection Select(const CSampleRequest& request = {}) const;

 private:
    friend class CRawDataFile;
    friend class vxfileio::access::CInternals;
    explicit CRecordingIndex(std::shared_ptr<const vxfileio::access::CIndexData> data);

    std::shared_ptr<const vxfileio::access::CIndexData> m_data;
};
