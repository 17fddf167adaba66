#pragma once

/// @file
/// The texts of every failure that reading and writing raw data files reports, as a `CExcVXReader` with code -1.

namespace vxfileio::rawdata {

// Files and disks. The path or the key follows where the text ends in a blank.
inline constexpr const char* kCannotOpen = "Cannot open file ";
inline constexpr const char* kExists = ", because it exists";  // after kCannotOpen and the path
inline constexpr const char* kNameTaken = "choose another name, or move what is there; Open replaces files";
inline constexpr const char* kNotOurFile = "Opened file is not a Vexaprobe file.";
inline constexpr const char* kEmptyFile = "Opened file is empty.";
inline constexpr const char* kBadRecordingHdr = "Error reading Recording Header";
inline constexpr const char* kBadSegmentPosition = "Error seeking Data Segment.";
inline constexpr const char* kBadSegmentHdr = "Error reading Data Segment Header";

// Mistakes of the caller, reported before anything is written.
inline constexpr const char* kDoesNotFit = "Value does not fit its cell: ";
inline constexpr const char* kNoOpenFile = "No raw data file is open for writing.";
inline constexpr const char* kFileHdrMissing = "The file header has not been written.";
inline constexpr const char* kFileHdrTwice = "The file header has already been written.";
inline constexpr const char* kNoRecording = "No recording has been begun.";
inline constexpr const char* kNoSamples = "The samples are missing.";
inline constexpr const char* kBadTick = "The sample interval must be above 0.";
inline constexpr const char* kTimesReversed = "The segment ends before it begins.";
inline constexpr const char* kTooManySamples = "The segment holds too many samples.";

// Mistakes of the caller of bulk access.
inline constexpr const char* kNoSuchRecording = "The file has no such recording.";
inline constexpr const char* kUnfinished = "The recording isn't finished.";
inline constexpr const char* kWrongBuffers = "The buffers don't match the wells.";
inline constexpr const char* kWrongBuffer = "The buffer doesn't match the segment.";

// Values that are written as given although readers can't use them. `GetWriteError` reports them; the key of the cell
// follows where the text ends in a blank.
inline constexpr const char* kNotOurMark = "HeaderID doesn't begin with OVL Vexaprobe, so readers won't open the file";
inline constexpr const char* kVersionTooOld = "FileVersion is below 2, so readers won't find the wells";
inline constexpr const char* kReadBackCut = "Because of a NUL, CR, LF, '=' or ':', readers get only a part of ";

}  // namespace vxfileio::rawdata
