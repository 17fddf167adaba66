#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/report/Table.h"

namespace vxfile {

/// @name The states of files and recordings
/// @{
inline constexpr std::string_view kFinished = "finished";
inline constexpr std::string_view kUnfinished = "unfinished";
inline constexpr std::string_view kDamaged = "damaged";
inline constexpr std::string_view kUnreadable = "unreadable";  ///< Of files only.
/// @}

/// The size and time of a file. If both are the same, the file is considered unchanged.
struct CStamp {
    std::int64_t size = 0;
    std::string modified = {};  ///< ISO 8601 in UTC, with nanoseconds. Empty if there is no such file.

    bool operator==(const CStamp&) const = default;
};

/// Returns the stamp of a file.
CStamp StampOf(const std::string& path);

/// A recording in a raw data file.
struct CCatalogRecording {
    std::string task = {};
    std::int64_t number = 0;
    std::int64_t dose = 0;
    std::int64_t wells = 0;
    std::int64_t samples = 0;
    std::string_view state = kFinished;
};

/// Returns a path as UTF-8 that no other path has: bytes that aren't UTF-8 as `\xe4`, and a backslash before an `x` as
/// `\x5c`, unless backslashes separate folders. A program gets the path back if it replaces each of these by its byte.
std::string PathText(const std::string& path);

/// A file, as its headers describe it. Texts are UTF-8.
struct CCatalogEntry {
    std::string path = {};       ///< See `PathText`.
    std::string_view kind = {};  ///< See `WordOf`; empty if the file can't be read.
    CStamp stamp = {};
    std::string guid = {};  ///< See `BareGuid`: the files of one run have the same.
    std::string plate = {};
    std::string compound = {};
    std::vector<CCatalogRecording> recordings = {};  ///< Of a raw data file.
    std::string_view state = kFinished;
    std::string reason = {};  ///< A sentence, unless the file is finished.
};

/// Reads the headers of a file. Never throws for a bad file. A file that changes at the same time is unfinished.
CCatalogEntry ScanFile(const std::string& path);

/// The columns of a row per file.
std::span<const CColumn> FileColumns();
/// The columns that a recording adds to those of its file, in a row per recording.
std::span<const CColumn> RecordingColumns();

/// Cells point to their values, which must outlive them.
using CCells = std::vector<CCell>;

/// Returns the cells of a file.
CCells CellsOf(const CCatalogEntry& entry);
/// Returns the cells of a recording; all are missing if it is null. `doseText` receives the text of its dose.
CCells CellsOf(const CCatalogRecording* recording, std::string& doseText);

}  // namespace vxfile
