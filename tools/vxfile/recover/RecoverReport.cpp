#include "tools/vxfile/recover/RecoverReport.h"

#include <algorithm>
#include <utility>

#include "tools/vxfile/io/Text.h"

namespace vxfile {

namespace {

void PrintWells(std::ostream& out, const std::map<std::int32_t, CKeptWell>& kept) {
    std::vector<std::int32_t> same;
    for (auto well = kept.begin(); well != kept.end(); ++well) {
        same.push_back(well->first);
        if (const auto next = std::next(well); next != kept.end() && next->second == well->second) continue;
        const CKeptWell& what = well->second;
        out << "    " << (same.size() == 1 ? "well " : "wells ") << ListText(same)
            << (same.size() == 1 ? ": " : ", each: ") << Counted(what.segments, "segment") << ", "
            << Counted(what.samples, "sample") << ", times " << what.from << " to " << what.to << '\n';
        same.clear();
    }
}

void PrintLoss(std::ostream& out, const CLoss& loss) {
    out << "    lost: bytes " << loss.from << " to " << loss.to;
    if (loss.wellID) out << ", well " << *loss.wellID;
    out << ": " << loss.why << '\n';
}

CJson LossJson(const CLoss& loss) {
    CJson json = {{"from", loss.from}, {"to", loss.to}, {"why", loss.why}};
    json["well"] = loss.wellID ? CJson(*loss.wellID) : CJson();
    return json;
}

CJson RecordingJson(const CRecoverReport::CRecording& recording) {
    CJson wells = CJson::array();
    for (const auto& [wellID, kept] : recording.wells) {
        wells.push_back({{"well", wellID},
                         {"segments", kept.segments},
                         {"samples", kept.samples},
                         {"from", kept.from},
                         {"to", kept.to}});
    }
    return {{"task", Readable(recording.task)},
            {"recording", recording.number},
            {"position", recording.position},
            {"unfinished", recording.unfinished},
            {"notes", recording.notes},
            {"wells", wells},
            {"lost", CJson::array()}};
}

}  // namespace

bool CRecoverReport::IsComplete() const {
    const auto hasNotes = [](const CRecording& recording) { return !recording.notes.empty(); };
    return losses.empty() && fileNotes.empty() && std::ranges::none_of(recordings, hasNotes);
}

void CRecoverReport::PrintText(std::ostream& out) const {
    for (const auto& note : fileNotes)
        out << source << ": " << note << '\n';
    const auto printLosses = [&](const std::optional<std::uint32_t>& recording) {
        for (const CLoss& loss : losses) {
            if (loss.recording == recording) PrintLoss(out, loss);
        }
    };
    printLosses(std::nullopt);
    std::uint64_t samples = 0;
    for (std::uint32_t i = 0; i < recordings.size(); ++i) {
        const CRecording& recording = recordings[i];
        out << "  " << recording.name << (recording.unfinished ? ", which its writer never finished" : "")
            << (recording.wells.empty() ? ": no segments" : "") << '\n';
        for (const auto& note : recording.notes)
            out << "    " << note << '\n';
        PrintWells(out, recording.wells);
        for (const auto& well : recording.wells)
            samples += well.second.samples;
        printLosses(i);
    }
    if (moreLosses > 0) out << "  and " << Counted(moreLosses, "more place") << " with losses\n";
    out << target << ": " << Counted(recordings.size(), "recording") << ", " << Counted(samples, "sample") << ", "
        << bytes << " bytes; " << (IsComplete() ? "nothing was lost" : "what was lost is told above") << ".\n";
}

CJson CRecoverReport::ToJson() const {
    CJson json = {{"file", Readable(source)}, {"output", Readable(target)}, {"bytes", bytes},
                  {"complete", IsComplete()}, {"notes", fileNotes},         {"recordings", CJson::array()},
                  {"lost", CJson::array()},   {"moreLosses", moreLosses}};
    for (const CRecording& recording : recordings)
        json["recordings"].push_back(RecordingJson(recording));
    for (const CLoss& loss : losses) {
        auto& list = loss.recording ? json["recordings"][*loss.recording]["lost"] : json["lost"];
        list.push_back(LossJson(loss));
    }
    return json;
}

}  // namespace vxfile
