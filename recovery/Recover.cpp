#include "recovery/Recover.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "recovery/Account.h"
#include "recovery/Explanation.h"
#include "recovery/Membership.h"
#include "recovery/Wells.h"

namespace vxfileio::recovery {

bool CReport::IsComplete() const {
    const auto hasNotes = [](const CReportedRecording& recording) { return !recording.notes.empty(); };
    return losses.None() && doubts.None() && notes.empty() && std::ranges::none_of(recordings, hasNotes);
}

CReport Recover(const CInput& input, const COptions& options, const CSink& sink) {
    const std::int64_t size = input.Size();
    CWindow window(input, size);
    const CCandidates candidates = FindCandidates(window, options.searched);
    const std::vector<CPiece> pieces = Explain(candidates, size, options.searched);
    CReport report;
    report.isGrowing = input.Size() > size;
    CFound found = AccountFor(window, pieces, options.keepCut, report.isGrowing);
    DoubtMembership(pieces, found);
    // If all positions are correct and reach everything, their order is better than that of the input.
    if (!found.isStraight) {
        if (auto followed = FollowPositions(window, candidates, pieces)) found = std::move(*followed);
    }
    if (found.recordings.empty()) return report;
    SettleWells(found);
    report.losses = std::move(found.losses);
    report.doubts = std::move(found.doubts);
    Rebuild(window, found, sink, options.saved, report);
    report.losses.Sort();
    report.doubts.Sort();
    return report;
}

}  // namespace vxfileio::recovery
