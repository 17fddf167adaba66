#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/rawdata/RawDataHeaders.h"

namespace vxfileio::rawdata {
class CRawDataReader;
}

/// Reads a raw data file (`.vxd`): its content from memory, its samples one segment at a time.
///
/// `Open` walks the recording headers once; every question about tasks, doses and wells is then answered without
/// touching the file. To read samples: `Open`, `SelectWellID` for a single well, `JumpToData`, then `ReadSegment`
/// until it returns false. The file may still be growing under another thread's or process's writer: everything that
/// was whole before `Open` is seen whole.
///
/// Every failure is a `CExcVXReader` with code -1. After one the reader stays usable: `Open` another file, or
/// `JumpToData` to another recording. Task names are compared whole and byte by byte. One thread at a time.
class VXFILEIO_API CIRawDataReader {
 public:
    CIRawDataReader();
    /// Releases the file and the sample buffer.
    ~CIRawDataReader();

    CIRawDataReader(const CIRawDataReader&) = delete;
    CIRawDataReader& operator=(const CIRawDataReader&) = delete;

    /// Opens a file and reads all its headers. Releases the file opened before; keeps the selected well.
    ///
    /// Throws "Cannot open file " and the path, "Opened file is not a Vexaprobe file.", "Opened file is empty." if no
    /// recording was ever begun, or "Error reading Recording Header" if the chain of recordings is damaged or a
    /// circle. The content of the headers is then unspecified.
    void Open(const std::string& path);

    /// Returns the file header. The pointer stays valid as long as the reader; its content changes with `Open`.
    const CRawDataFileHdr* GetFileHdr() const noexcept;

    /// Returns one entry per recording, in file order. The pointer stays valid as long as the reader; its content
    /// changes with `Open`.
    const CRawDataIndex* GetIndex() const noexcept;

    /// Returns each task name once, in the order of first appearance.
    std::vector<std::string> GetTasks() const;

    /// Returns the doses, in picomolar, of the recordings of a task that have this well, in file order and with
    /// repetitions.
    std::vector<std::int64_t> GetDoses(const std::string& taskName, std::int32_t wellID) const;

    /// Returns the well IDs of the first recording of the file, regardless of the task name.
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName) const;

    /// Returns the well IDs of every recording with this task name and number, in file order.
    std::vector<std::int32_t> GetWellIDs(const std::string& taskName, std::int32_t recording) const;

    /// Returns the first recording with this task name and number, or null. The pointer stays valid until the next
    /// `Open`.
    const CRawDataRecordingHdr* GetRecordingHdr(const std::string& taskName, std::int32_t recording) const;

    /// Narrows `ReadSegment` to one well from its next call on; -1 means all wells.
    ///
    /// While a well is selected, the reader remembers the positions of the segments that it passes, in 16 bytes each,
    /// until the next `Open`. Later passes through the same recording, for any well, don't read segments again that
    /// they don't deliver. Header and samples of a delivered segment are always read from the file; if a header has
    /// changed, the new one is followed. A change in a skipped segment may go unnoticed until the next `Open`.
    void SelectWellID(std::int32_t wellID) noexcept;

    /// Goes to the first segment of a recording. Of several with this task name and number the last counts.
    /// Returns false, leaving the position as it was, if there is none or its writer never finished it. Reads nothing.
    bool JumpToData(const std::string& taskName, std::int32_t recording);

    /// Delivers the next segment of the recording, or returns false at the end of its chain.
    ///
    /// On true `samples` points at `size` samples in the reader's own buffer, valid until the next `ReadSegment` or the
    /// end of the reader; times are inclusive and in the instrument's time unit. Samples beyond the end of a cut file
    /// are 0. On false with a well selected, `wellID` holds the last well passed over; all else is unchanged.
    ///
    /// Throws "Error seeking Data Segment." for a negative position, and "Error reading Data Segment Header" if there
    /// is no segment header, not even its whole first cell, or the chain is a circle; the position stays at that
    /// segment. What a cut header lacks reads as 0. Throws the latter also if the
    /// samples reach further beyond the end of the file than the file is long (at least 16 MiB); the next call then
    /// continues with the next segment. After `std::bad_alloc` the next call delivers the same segment.
    bool ReadSegment(std::int32_t& wellID, std::int64_t& timeFrom, std::int64_t& timeTo, std::uint32_t& size,
                     std::uint16_t*& samples);

 private:
    std::unique_ptr<vxfileio::rawdata::CRawDataReader> m_reader;
};
