#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tools/vxfile/Json.h"
#include "tools/vxfile/recover/Inventory.h"
#include "tools/vxfile/recover/Mending.h"

namespace vxfile {

/// What was kept of one well.
struct CKeptWell {
    std::uint64_t segments = 0;
    std::uint64_t samples = 0;
    std::int64_t from = 0;  ///< The first time.
    std::int64_t to = 0;    ///< The last time.

    bool operator==(const CKeptWell&) const = default;
};

/// What became of a file, per recording and well.
struct CRecoverReport {
    std::string source;
    std::string target;
    std::int64_t bytes = 0;  ///< Size of the new file.
    std::vector<std::string> fileNotes;

    struct CRecording {
        std::string name;  ///< For people, such as `Series 1`.
        std::string task;
        std::int32_t number = 0;
        std::int64_t position = 0;  ///< In the old file.
        bool unfinished = false;
        std::vector<std::string> notes;
        std::map<std::int32_t, CKeptWell> wells;
    };
    std::vector<CRecording> recordings;
    std::vector<CLoss> losses;
    std::uint64_t moreLosses = 0;

    /// Tells whether the new file has all that the old one had, but for positions.
    bool IsComplete() const;
    /// Prints the report for people.
    void PrintText(std::ostream& out) const;
    /// The report for programs.
    CJson ToJson() const;
};

/// Surveys the file at `source` and writes what is whole to a new one at `target`, which isn't there yet or may be
/// replaced. `keepCut` keeps a last segment that was cut, up to its last whole sample. The report tells `target` as
/// its target. Throws `CFailure` if there is nothing to save, or the files can't be read or written.
CRecoverReport Recover(const std::string& source, const std::string& target, bool keepCut);

}  // namespace vxfile
