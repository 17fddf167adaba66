#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tools/vxfile/recover/Inventory.h"
#include "tools/vxfile/recover/Mending.h"
#include "tools/vxfile/report/Json.h"

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
    CRemarks losses;  ///< What isn't in the new file.
    CRemarks doubts;  ///< What may be lost, or not be what it was.

    /// Tells whether the new file has all that the old one had, but for positions, and without a doubt.
    bool IsComplete() const;
    /// Prints the report for people.
    void PrintText(std::ostream& out) const;
    /// The report for programs.
    CJson ToJson() const;

 private:
    const char* Verdict() const;
};

/// How to recover.
struct CRecoverOptions {
    bool keepCut = false;  ///< Keep a last segment that was cut, up to its last whole sample.
    bool replace = false;  ///< Replace the new file if there is one already.
};

/// Surveys the file at `source` and writes what is whole to a new one at `target`, which is there when it is whole, or
/// not at all. Throws `CFailure` if there is nothing to save, if `target` is the file itself, or if the files can't be
/// read or written.
CRecoverReport Recover(const std::string& source, const std::string& target, const CRecoverOptions& options);

}  // namespace vxfile
