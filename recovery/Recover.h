#pragma once

#include "recovery/Candidates.h"
#include "recovery/Input.h"
#include "recovery/Rebuild.h"
#include "recovery/Report.h"

namespace vxfileio::recovery {

/// How to recover.
struct COptions {
    bool keepCut = false;                   ///< Keep a last segment that was cut, up to its last whole sample.
    CReach searched = [](std::int64_t) {};  ///< Is called with the offset that has been searched so far.
    CReach saved = [](std::int64_t) {};     ///< Is called with the size of the new file so far.
};

/// Writes what is whole in `input` as a new file to `sink`, and returns what became of it. If there is nothing to save,
/// the report has no bytes and nothing is written. Whatever the callbacks throw ends the work.
///
/// Time is linear in the size of the input. Memory is about 300 bytes per header and a few blocks of 1 MiB.
///
/// Throws `CReadFailure` if the input can't be read.
CReport Recover(const CInput& input, const COptions& options, const CSink& sink);

}  // namespace vxfileio::recovery
