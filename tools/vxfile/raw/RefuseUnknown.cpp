#include "tools/vxfile/raw/RefuseUnknown.h"

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"

namespace vxfile {

std::string ListOrNone(const std::set<std::int32_t>& numbers) {
    return numbers.empty() ? "none" : ListText({numbers.begin(), numbers.end()}, kMostListed);
}

void RefuseUnknownRecordings(const CPlateChoice& choice, const std::string& path,
                             const std::vector<CRecordingAt>& recordings) {
    std::set<std::string> tasks;
    std::set<std::int64_t> doses;
    for (const auto& recording : recordings) {
        tasks.insert(recording.header.TaskName);
        if (HasOrIsEmpty(choice.tasks, recording.header.TaskName)) doses.insert(recording.header.Dose);
    }
    for (const auto& task : choice.tasks) {
        if (tasks.contains(task)) continue;
        throw CFailure(std::string(path).append(" has no task ").append(task).append("; its tasks: ") +
                       ListOf(tasks, Readable) + '.');
    }
    for (const auto dose : choice.doses) {
        if (!doses.contains(dose))
            throw CFailure(path + " has no recording with a dose of " + DoseText(dose) +
                           (choice.tasks.empty() ? "; its doses: " : " in the chosen tasks; their doses: ") +
                           ListOf(doses, DoseText) + '.');
    }
}

void RefuseUnknown(const CPlateView& view, const std::string& path, const std::vector<CRecordingAt>& recordings) {
    RefuseUnknownRecordings(view.choice, path, recordings);
    const auto wells = WellsOf(recordings, [&](const auto& header) { return view.choice.HasRecording(header); });
    for (const auto well : view.choice.wells) {
        if (!wells.contains(well))
            throw CFailure(view.labels.AddedTo(std::string(path).append(" has no well ").append(std::to_string(well)) +
                                               " in the chosen recordings; their wells: " + ListOrNone(wells) + '.'));
    }
}

void RefuseUnknown(const CPlateView& view, const std::string& path) {
    const CRawScan scan(path);
    const std::string refusal = FailureOf([&] { RefuseUnknown(view, path, scan.Recordings()); });
    if (refusal.empty()) return;
    throw CFailure(refusal + (scan.Break() ? " The chain of recordings is damaged after these; run 'vxfile recover' to "
                                             "save what is intact."
                                           : ""));
}

}  // namespace vxfile
