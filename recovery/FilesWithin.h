#pragma once

#include <cstdint>

#include "recovery/Candidates.h"

namespace vxfileio::recovery {

/// Removes the headers of raw data files that were stored as samples. Their positions count from the beginning of the
/// inner file; after it, those of the outer file continue, or the samples end as their segment header says.
void LeaveOutFilesWithin(CCandidates& candidates, std::int64_t size);

}  // namespace vxfileio::recovery
