#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vxfileio/access/RecordingIndex.h"
#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfileio::rawdata {
class CRawDataReader;
}
namespace vxfileio::access {
class CInternals;
}

/// A raw data file (`.vxd`) that is open for reading many samples at once. `CIRawDataReader` reads one segment after
/// the other; this class and those that it makes read whole recordings into the caller's buffers.
///
/// Open the file, read the index of a recording, select wells and times, and read them:
///
///     const CRawDataFile file("run.vxd");
///     const CRecordingIndex index = file.ReadIndex(0);
///     const CSampleSelection selection = index.Select({.WellIDs = {11}});
///     std::vector<std::uint16_t> samples(selection.GetSamples());
///     selection.Read({{samples}});
///
/// Immutable: all operations may run at the same time in any number of threads, on one object or several. Copying is
/// cheap. The file stays open until the last copy, index and selection is gone. Of an object that was moved from, only
/// destruction and assignment are allowed; this goes for all classes of bulk access.
class VXFILEIO_API CRawDataFile {
 public:
    /// Opens a file and reads its header and those of all recordings. Throws `CExcVXReader` as `CIRawDataReader::Open`
    /// does.
    explicit CRawDataFile(const std::string& path);

    /// Returns the file header. The reference is valid as long as this object or anything made from it.
    const CRawDataFileHdr& GetFileHdr() const noexcept;

    /// Returns the headers of all recordings, in file order. The reference is valid as long as this object or anything
    /// made from it.
    const std::vector<CRawDataRecordingHdr>& GetRecordings() const noexcept;

    /// Returns which recording, counted from 0 in file order, has this task name and number. Of several, the last
    /// finished one counts, as for `CIRawDataReader::JumpToData`, or the last one if none is finished. Nothing if there
    /// is none.
    std::optional<std::size_t> FindRecording(const std::string& taskName, std::int32_t recording) const noexcept;

    /// Reads the headers of all segments of a recording, counted from 0 in file order, in one pass.
    ///
    /// A finished recording without segments has an empty index. An unfinished recording is refused unless
    /// `options.Unfinished` is set. Then its segments are found from its header on, up to the last one that is whole by
    /// now: its writer may be adding more at the same time, and it is not an error if no further segment is found.
    ///
    /// Throws `CExcVXReader` with
    /// - "The file has no such recording." or "The recording isn't finished.",
    /// - "Error seeking Data Segment." or "Error reading Data Segment Header" if the chain of segments is damaged or a
    ///   circle, for which `CIRawDataReader::ReadSegment` has the same text, unless `options.UpToDamage` is set.
    ///
    /// Memory is in proportion to the segments that are in the file, not to what its headers claim.
    CRecordingIndex ReadIndex(std::size_t recording, const CIndexOptions& options = {}) const;

 private:
    friend class vxfileio::access::CInternals;

    std::shared_ptr<const vxfileio::rawdata::CRawDataReader> m_reader;
};
