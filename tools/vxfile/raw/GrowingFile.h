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

/// Follows a raw data file while it is being written.
///
/// A writer appends, so what comes next always begins where the last thing ended: another segment, or the header of the
/// next recording. What isn't complete yet is looked at again. Positions are of no use while a recording runs. They
/// show when the file is finished: its last recording then has the position of its data. All positions are followed
/// then, since readers rely on them.
///
/// The file is opened by its name at each look, so one that is deleted is waited for, and one that takes its place is
/// followed from its beginning.
class CGrowingFile {
 public:
    /// It is not an error if there is no such file yet. Throws `CFailure` if there is one that can't be opened.
    explicit CGrowingFile(std::string path);

    /// Takes everything that was complete when the look began, so it ends however fast the writer is. Returns true if
    /// there was anything new. Throws `CFailure` if the file isn't a raw data file.
    [[nodiscard]] bool Look();

    /// How far the writer is.
    enum class EState { Running, Finished, Damaged };

    /// Returns whether the writer has closed the file, and whether its positions lead to everything in it. Call it once
    /// after each look, with what that returned.
    [[nodiscard]] EState State(bool hasNews);

    /// Returns true if there was a file at the last look.
    bool IsThere() const { return m_file.IsOpen(); }
    /// How often another file has taken the place of the one that was being followed.
    std::size_t Replacements() const { return m_replacements; }
    /// The latest recording; null before the first.
    const CRunningRecording* Latest() const { return m_recordings == 0 ? nullptr : &m_latest; }
    std::size_t Recordings() const { return m_recordings; }
    /// The number of bytes that were taken.
    std::int64_t Position() const { return m_position; }

 private:
    bool Open();
    bool IsAnother() const;
    std::string RecordingStart(std::int64_t position) const;
    void StartOver();
    bool TakeAll();
    bool IsLastSet() const;
    bool LeadsToAll() const;
    bool TakeFileHdr();
    bool TakeSegment();
    bool TakeRecording();
    std::string Read(std::int64_t position, std::size_t size) const;

    std::string m_path;
    vxfileio::helpers::CFile m_file;
    std::int64_t m_position = 0;  ///< Where the last thing taken ends.
    std::int64_t m_size = 0;      ///< Of the file, when the look began.
    const vxfileio::rawdata::CLayout* m_layout = &vxfileio::rawdata::Layouts().back();  ///< Never null.
    std::string m_guid;  ///< The cell, and the first cells of the latest recording: what is never rewritten.
    std::string m_recordingStart;
    std::size_t m_replacements = 0;
    std::int64_t m_recordingHdr = vxfileio::rawdata::kUnset;
    CRunningRecording m_latest;
    std::size_t m_recordings = 0;
    std::uint64_t m_segments = 0;  ///< Of all recordings.
    bool m_wasSet = false;         ///< The last recording already had the position of its data at the look before.
};

}  // namespace vxfile
