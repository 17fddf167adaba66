#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/Layout.h"

namespace vxfile {

/// What a recording has so far.
struct CRunningRecording {
    std::size_t index = 0;  ///< In the order of the file, from 0.
    CRawDataRecordingHdr header;
    std::uint64_t segments = 0;
    std::uint64_t samples = 0;
    std::set<std::int32_t> wells;  ///< Those that have segments.
};

/// A raw data file while it is being written.
///
/// A writer appends, so what comes next always stands where the last thing ended: another segment, or the header of the
/// next recording. A thing that isn't there in full yet is looked at again. Positions are of no use while a recording
/// runs; they tell when the file is finished: the last recording is then told where its data is. All of them are looked
/// at then, since they are what readers go by.
class CGrowingFile {
 public:
    /// Throws `CFailure` if the file can't be opened.
    explicit CGrowingFile(const std::string& path);

    /// Takes all that is whole and was there when the look began, so that it ends however fast the writer is. Returns
    /// whether there was anything new. Throws `CFailure` if the file isn't one that is being written.
    bool Look();

    /// How far the writer is.
    enum class EState { Running, Finished, Damaged };

    /// Tells whether the writer has closed the file, and whether its positions lead to all that was taken. Call it once
    /// behind each look, with what that returned.
    EState State(bool hasNews);

    /// The latest recording; null before the first.
    const CRunningRecording* Latest() const { return m_recordings == 0 ? nullptr : &m_latest; }
    std::size_t Recordings() const { return m_recordings; }
    /// How many bytes have been taken.
    std::int64_t Position() const { return m_position; }

 private:
    bool IsLastSet() const;
    bool LeadsToAll() const;
    bool TakeFileHdr();
    bool TakeSegment();
    bool TakeRecording();
    std::string Read(std::int64_t position, std::size_t size) const;

    std::string m_path;
    vxfileio::helpers::CFile m_file;
    std::int64_t m_position = 0;  ///< Behind the last thing taken.
    std::int64_t m_size = 0;      ///< Of the file, when the look began.
    const vxfileio::rawdata::CLayout* m_layout = &vxfileio::rawdata::Layouts().back();  ///< Never null.
    std::int64_t m_recordingHdr = vxfileio::rawdata::kUnset;
    CRunningRecording m_latest;
    std::size_t m_recordings = 0;
    std::uint64_t m_segments = 0;  ///< Of all recordings.
    bool m_wasSet = false;         ///< The last recording was told where its data is already at the look before.
};

}  // namespace vxfile
