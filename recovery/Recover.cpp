#include "recovery/Recover.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "recovery/Account.h"
#include "recovery/Explanation.h"
#include "recovery/Wells.h"

namespace vxfileio::recovery {

namespace {

/// Returns whether one account has all segments of another.
bool Holds(const CFound& found, const CFound& other) {
    const auto places = [](const CFound& all) {
        std::vector<std::int64_t> positions;
        for (const CFoundSegment& segment : all.segments)
            positions.push_back(segment.position);
        std::ranges::sort(positions);
        return positions;
    };
    return found.recordings.size() >= other.recordings.size() && std::ranges::includes(places(found), places(other));
}

}  // namespace

bool CReport::IsComplete() const {
    const auto hasNotes = [](const CReportedRecording& recording) { return !recording.notes.empty(); };
    return losses.None() && doubts.None() && notes.empty() && std::ranges::none_of(recordings, hasNotes);
}

CReport Recover(const CInput& input, const COptions& options, const CSink& sink) {
    const std::int64_t size = input.Size();
    CWindow window(input, size);
    CCandidates candidates = FindCandidates(window, options.searched);
    const std::vector<CPiece> pieces = Explain(candidates, size, options.searched);
    CReport report;
    report.isGrowing = input.Size() > size;
    CAccount account = AccountFor(window, pieces, options.keepCut, report.isGrowing);
    // If all positions are correct and reach everything, their order is better than that of the input.
    if (!account.isStraight) {
        auto followed = FollowPositions(window, options.searched);
        if (followed && Holds(*followed, account.found)) account.found = std::move(*followed);
    }
    if (account.found.recordings.empty()) return report;
    SettleWells(account.found);
    report.losses = std::move(account.found.losses);
    report.doubts = std::move(account.found.doubts);
    Rebuild(window, account.found, sink, options.saved, report);
    return report;
}

}  // namespace vxfileio::recovery
