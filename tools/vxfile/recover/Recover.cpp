#include <algorithm>
#include <utility>

#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/OpenInput.h"
#include "tools/vxfile/io/Progress.h"
#include "tools/vxfile/io/Text.h"
#include "tools/vxfile/recover/Mending.h"
#include "tools/vxfile/recover/RecoverReport.h"
#include "tools/vxfile/recover/RecoveredFile.h"
#include "tools/vxfile/recover/Survey.h"

namespace vxfile {

namespace {

using vxfileio::CFile;
using vxfileio::rawdata::CSegmentHdr;

/// By the order in the file, unless the chains lead to as much and are whole: then by them.
CInventory TakeInventory(const CFile& file, bool keepCut) {
    CProgress progress("Surveying", file.Size());
    const auto reach = [&](std::int64_t position) { progress.Reach(position); };
    CInventory inOrder = CSurvey(file, keepCut, reach).Take();
    auto alongChains = CSurvey(file, keepCut, reach).TakeAlongChains();
    if (!alongChains || alongChains->segments.size() < inOrder.segments.size() ||
        alongChains->recordings.size() < inOrder.recordings.size())
        return inOrder;
    return std::move(*alongChains);
}

void Add(const CSegmentHdr& header, CKeptWell& well) {
    well.from = well.segments == 0 ? header.TimeFrom : std::min(well.from, header.TimeFrom);
    well.to = well.segments == 0 ? header.TimeTo : std::max(well.to, header.TimeTo);
    well.samples += static_cast<std::uint64_t>(header.Size);
    ++well.segments;
}

CRecoverReport::CRecording ReportOf(const CFoundRecording& found, const CMendedRecording& mended) {
    return {.name = Readable(mended.header.TaskName) + " " + std::to_string(mended.header.Recording),
            .task = mended.header.TaskName,
            .number = mended.header.Recording,
            .position = found.position,
            .unfinished = found.unfinished,
            .notes = mended.notes,
            .wells = {}};
}

}  // namespace

CRecoverReport Recover(const std::string& source, const std::string& target, bool keepCut) {
    CFile file;
    OpenInput(file, source);
    CInventory inventory = TakeInventory(file, keepCut);
    SettleDisagreements(inventory);
    if (inventory.recordings.empty())
        throw CFailure(source + " holds no recording, not even a damaged one; there is nothing to save.");

    CRecoverReport report;
    report.source = source;
    report.target = target;
    const CMendedFileHdr fileHdr = MendFileHdr(inventory);
    report.fileNotes = fileHdr.notes;
    std::vector<CMendedRecording> recordings;
    for (const CFoundRecording& found : inventory.recordings) {
        recordings.push_back(Mend(found, static_cast<std::int32_t>(recordings.size() + 1)));
        report.recordings.push_back(ReportOf(found, recordings.back()));
    }
    CProgress progress("Saving", file.Size());
    const auto tell = [&](const CFoundSegment& segment, const CSegmentHdr& header, std::int64_t size) {
        Add(header, report.recordings[segment.recording].wells[header.ID]);
        progress.Reach(size);
    };
    report.bytes = WriteRecovered(inventory, fileHdr, recordings, file, target, tell);
    report.losses = std::move(inventory.losses);
    report.moreLosses = inventory.moreLosses;
    return report;
}

}  // namespace vxfile
