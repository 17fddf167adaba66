#pragma once

#include "recovery/Candidates.h"
#include "recovery/Input.h"
#include "recovery/Rebuild.h"
#include "recovery/Report.h"

namespace vxfileio::recovery {

/// How to recover.
struct COptions {
    bool keepCut = false;                   ///< Keep the whole samples of a last segment that is cut.
    CReach searched = [](std::int64_t) {};  ///< Called with the offset searched so far.
    CReach saved = [](std::int64_t) {};     ///< Called with the size of the new file so far.
};

/// Writes what is whole in `input` as a new file to `sink`, and returns a report. If there is nothing to save, the
/// report has 0 bytes and nothing is written. Exceptions of the callbacks end the work.
///
/// Takes linear time in the size of the input, and about 300 bytes of memory per header plus a few blocks of 1 MiB.
///
/// Throws `CReadFailure` if the input can't be read.
CReport Recover(const CInput& input, const COptions& options, const CSink& sink);

}  // namespace vxfileio::recovery
