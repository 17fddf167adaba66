#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "tools/vxfile/plate/PlateView.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/rawdata/Layout.h"

namespace vxfile {

/// The content of a recording so far, of the chosen wells.
struct CRunningRecording {
    std::size_t index = 0;  ///< Its index in the file, from 0.
    CRawDataRecordingHdr header;
    std::uint64_t segments = 0;
    std::uint64_t samples = 0;
    std::set<std::int32_t> wells;  ///< The wells that have segments.
};

/// Follows a raw data file while it is being written.
///
/// A writer appends, so each segment or recording header begins where the one before it ended. An incomplete one is
/// read again at the next look. Positions aren't set while a recording runs, so they aren't used. Once the last
/// recording has the position of its data, the file is finished. All positions are then checked, since readers rely on
/// them.
///
/// Each look opens the file by its name. If the file was deleted, it waits for a new one, and follows that from the
/// start.
class CGrowingFile {
 public:
    /// Counts only what is in the chosen wells. It is not an error if the file doesn't exist yet. Throws `CFailure` if
    /// it exists but can't be opened.
    explicit CGrowingFile(std::string path, CPlateChoice choice = {});

    /// Reads everything that is complete in the bytes that the file has at the start of this call, so it returns even
    /// if the writer is fast. Returns true if there was anything new. Throws `CFailure` if it isn't a raw data file.
    [[nodiscard]] bool Look();

    /// The state of the file.
    enum class EState { Running, Finished, Damaged };

    /// Returns whether the writer has closed the file, and if so, whether its positions lead to everything in it. Call
    /// it once after each `Look`, with its result.
    [[nodiscard]] EState State(bool hasNews);

    /// Returns true if there was a file at the last look.
    bool IsThere() const { return m_file.IsOpen(); }
    /// Returns how often another file replaced the one being followed.
    std::size_t Replacements() const { return m_replacements; }
    /// Returns the latest recording; null before the first. Valid until the next `Look` or `State`.
    const CRunningRecording* Latest() const { return m_recordings == 0 ? nullptr : &m_latest; }
    std::size_t Recordings() const { return m_recordings; }
    /// Returns the number of bytes read so far.
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
    CPlateChoice m_choice;
    vxfileio::helpers::CFile m_file;
    std::int64_t m_position = 0;  ///< The end of the last header or segment that was read.
    std::int64_t m_size = 0;      ///< The size of the file at the start of the look.
    const vxfileio::rawdata::CLayout* m_layout = &vxfileio::rawdata::Layouts().back();  ///< Never null.
    std::string m_guid;  ///< This cell, and the first cells of the latest recording, are never rewritten.
    std::string m_recordingStart;
    std::size_t m_replacements = 0;
    std::int64_t m_recordingHdr = vxfileio::rawdata::kUnset;
    CRunningRecording m_latest;
    std::size_t m_recordings = 0;
    std::uint64_t m_segments = 0;  ///< The number of segments of all recordings.
    bool m_wasSet = false;         ///< At the look before, the last recording already had the position of its data.
};

}  // namespace vxfile
