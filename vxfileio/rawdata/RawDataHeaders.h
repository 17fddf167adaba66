#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"

/// @file
/// The values that carry the headers of a raw data file between caller and library.
///
/// All are plain values with deep copies, and every field has a default, so that callers may name just those they set.
/// File positions are absolute byte offsets, -1 meaning unset. Times and sample intervals are whole numbers of the
/// instrument's time unit, which the library doesn't interpret. Doses are picomolar.

/// One channel of a recording: a well and how its samples turn into physical units.
struct CRawDataChannelInfo {
    std::int32_t ID = -1;     ///< Well ID.
    std::int32_t ADZero = 0;  ///< AD value that means zero.
    double UnitsPerAD = 0.0;  ///< Physical units per AD step.
    std::int64_t Ticks = 0;   ///< Sample interval. A reader gets it back within the range of 32 bits.
};

/// The header of one recording.
struct CRawDataRecordingHdr {
    std::string TaskName = {};                           ///< The task that made the recording, a word of `enTask`.
    std::int32_t Recording = -1;                         ///< Number of the recording within its task.
    std::int64_t Dose = 0;                               ///< Dose in picomolar.
    std::int64_t FPosRecordingData = -1;                 ///< First segment; -1 while the recording isn't finished.
    std::int64_t FPosRecordingTrailer = -1;              ///< Always -1: no trailer is written.
    std::int64_t FPosNextRecordingHdr = -1;              ///< Next recording header; -1 at the last.
    std::uint64_t RecordingStartTime = 0;                ///< When the recording started; 0 in files of version 1.
    std::int64_t RecordingTime = 0;                      ///< Length of the recording.
    std::vector<CRawDataChannelInfo> WellChannels = {};  ///< One item per well.
    std::vector<CRawDataChannelInfo> AuxChannels = {};   ///< Auxiliary channels; this library writes none.
};

/// The header of a raw data file.
struct CRawDataFileHdr {
    std::string HeaderID = {};                    ///< Must begin "OVL Vexaprobe".
    std::int64_t FPosFirstRecordingHdr = -1;      ///< First recording header; -1 until one exists.
    std::string FileType = {};                    ///< The caller's file type.
    std::string ProgramVersion = {};              ///< Version of the recording program.
    std::int32_t FileVersion = 0;                 ///< Version of the format; a written file needs 2 or more.
    std::string Guid = {};                        ///< Identity of the file.
    std::string PlateID = {};                     ///< Plate identifier.
    std::int32_t CompoundID = -1;                 ///< Compound identifier.
    std::string CompoundName = {};                ///< Compound name.
    std::vector<std::int64_t> PreQC = {};         ///< List that `UpdateFileHdr` put for the task "PreQC".
    std::vector<std::int64_t> CompoundTest = {};  ///< The same for "CompoundTest".
    std::vector<std::int64_t> PostQC = {};        ///< The same for "PostQC".
    std::string CheckSum = {};                    ///< Always "0" as written; nothing tests it.
    std::string Reserved = {};                    ///< Always empty as written.
};

/// Returns a header that readers accept: the given fields, with `HeaderID` and `FileVersion` set to the mark and to the
/// newest version that this library writes. For example `MakeFileHdr({.PlateID = "P1", .CompoundName = "C"})`.
[[nodiscard]] VXFILEIO_API CRawDataFileHdr MakeFileHdr(CRawDataFileHdr fields = {});

/// One line of the index: which recording of which task at which dose.
struct CIndexEntry {
    std::string TaskName = {};    ///< As in the recording header.
    std::int32_t Recording = -1;  ///< As in the recording header.
    std::int64_t Dose = 0;        ///< As in the recording header, in picomolar.
};

/// What a raw data file holds: one entry per recording, in the order of adding.
class VXFILEIO_API CRawDataIndex {
 public:
    /// Appends a copy of the entry.
    void AddEntry(const CIndexEntry& entry);

    /// Removes all entries.
    void Clear() noexcept;

    /// Returns the number of entries.
    std::int32_t GetCount() const noexcept;

    /// Returns the entry at the index, or null if the index is negative or not below the count. The pointer stays
    /// valid until the next `AddEntry` or `Clear`.
    const CIndexEntry* GetEntry(std::int32_t index) const noexcept;

 private:
    std::vector<CIndexEntry> m_entries;
};
