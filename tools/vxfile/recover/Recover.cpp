#include <algorithm>
#include <utility>
#include <vector>

#include "tools/vxfile/recover/Mending.h"
#include "tools/vxfile/recover/RecoverReport.h"
#include "tools/vxfile/recover/RecoveredFile.h"
#include "tools/vxfile/recover/Survey.h"
#include "tools/vxfile/recover/WellJudge.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/OpenInput.h"
#include "tools/vxfile/system/Output.h"

namespace vxfile {

namespace {

using vxfileio::helpers::CFile;
using vxfileio::helpers::CReplacingFile;

/// Tells whether all segments of one inventory are in another.
bool Holds(const CInventory& inventory, const CInventory& other) {
    const auto places = [](const CInventory& all) {
        std::vector<std::int64_t> positions;
        for (const CFoundSegment& segment : all.segments)
            positions.push_back(segment.position);
        std::ranges::sort(positions);
        return positions;
    };
    return inventory.recordings.size() >= other.recordings.size() &&
           std::ranges::includes(places(inventory), places(other));
}

/// By the order in the file, unless the chains are whole and lead to all that was found so: then by them. A chain that
/// leaves something out may have been led astray by a damaged position, even into samples that look like segments.
CInventory TakeInventory(const CHeaderProbe& probe, bool keepCut) {
    CProgress progress("Surveying", probe.Size());
    const auto reach = [&](std::int64_t position) { progress.Reach(position); };
    CSurvey survey(probe, keepCut, reach);
    CInventory inOrder = survey.Take();
    if (survey.IsStraight()) return inOrder;
    auto alongChains = CSurvey(probe, keepCut, reach).TakeAlongChains();
    return alongChains && Holds(*alongChains, inOrder) ? std::move(*alongChains) : std::move(inOrder);
}

void Add(const CFoundSegment& segment, CKeptWell& well) {
    well.from = well.segments == 0 ? segment.from : std::min(well.from, segment.from);
    well.to = well.segments == 0 ? segment.to : std::max(well.to, segment.to);
    well.samples += segment.samples;
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

/// Writes what was found to the file that isn't in its place yet.
CRecoverReport Write(const CInventory& inventory, const CCopyFiles& files) {
    CRecoverReport report;
    report.source = files.sourcePath;
    report.target = files.target;
    const CMendedFileHdr fileHdr = MendFileHdr(inventory);
    report.fileNotes = fileHdr.notes;
    std::vector<CMendedRecording> recordings;
    for (const CFoundRecording& found : inventory.recordings) {
        recordings.push_back(Mend(found, static_cast<std::int32_t>(recordings.size() + 1)));
        report.recordings.push_back(ReportOf(found, recordings.back()));
    }
    CProgress progress("Saving", files.source.Size());
    const auto tell = [&](const CFoundSegment& segment, std::int64_t size) {
        Add(segment, report.recordings[segment.recording].wells[segment.wellID]);
        progress.Reach(size);
    };
    report.bytes = WriteRecovered(inventory, fileHdr, recordings, files, tell);
    return report;
}

}  // namespace

CRecoverReport Recover(const std::string& source, const std::string& target, const CRecoverOptions& options) {
    CFile file;
    OpenInput(file, source);
    RefuseTarget(target, source);
    CReplacingFile whole;
    CreateWhole(whole, target, options.replace);
    const CHeaderProbe probe(file, source);
    CInventory inventory = TakeInventory(probe, options.keepCut);
    if (inventory.recordings.empty())
        throw CFailure(source + " holds no segment and no complete recording header; there is nothing to save.");
    SettleWells(inventory);
    CRecoverReport report = Write(inventory, {file, source, whole.WorkPath(), target});
    if (!whole.Commit()) RefuseWrite(target, whole.Failure());
    report.losses = std::move(inventory.losses);
    report.doubts = std::move(inventory.doubts);
    return report;
}

}  // namespace vxfile
