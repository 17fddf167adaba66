#include "tools/vxfile/recover/RecoverReport.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Text.h"

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

void PrintRemark(std::ostream& out, std::string_view kind, const CRemark& remark) {
    out << "    " << kind;
    if (remark.from == remark.to) {
        out << ": at byte " << remark.from;
    } else {
        out << ": bytes " << remark.from << " to " << remark.to;
    }
    if (remark.wellID) out << ", well " << *remark.wellID;
    out << ": " << remark.why << '\n';
}

/// Prints those remarks that belong to a recording, or to none.
void PrintRemarks(std::ostream& out, std::string_view kind, const CRemarks& remarks,
                  const std::optional<std::uint32_t>& recording) {
    for (const CRemark& remark : remarks.first) {
        if (remark.recording == recording) PrintRemark(out, kind, remark);
    }
}

CJson RemarkJson(const CRemark& remark) {
    CJson json = {{"from", remark.from}, {"to", remark.to}, {"why", remark.why}};
    json["well"] = remark.wellID ? CJson(*remark.wellID) : CJson();
    return json;
}

/// Puts each remark into the list of that name, of its recording or of the whole file.
void AddRemarks(CJson& json, const char* list, const CRemarks& remarks) {
    for (const CRemark& remark : remarks.first)
        (remark.recording ? json["recordings"][*remark.recording] : json)[list].push_back(RemarkJson(remark));
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
    return {{"task", Readable(recording.task)}, {"recording", recording.number},
            {"position", recording.position},   {"unfinished", recording.unfinished},
            {"notes", recording.notes},         {"wells", wells},
            {"lost", CJson::array()},           {"doubts", CJson::array()}};
}

}  // namespace

bool CRecoverReport::IsComplete() const {
    const auto hasNotes = [](const CRecording& recording) { return !recording.notes.empty(); };
    return losses.None() && doubts.None() && fileNotes.empty() && std::ranges::none_of(recordings, hasNotes);
}

const char* CRecoverReport::Verdict() const {
    if (IsComplete()) return "nothing was lost";
    if (!losses.None()) return "what was lost is told above";
    return "every segment that is there was kept, but what is told above isn't certain";
}

void CRecoverReport::PrintText(std::ostream& out) const {
    for (const auto& note : fileNotes)
        out << source << ": " << note << '\n';
    PrintRemarks(out, "lost", losses, std::nullopt);
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
        PrintRemarks(out, "lost", losses, i);
        PrintRemarks(out, "doubt", doubts, i);
    }
    if (losses.more > 0) out << "  and " << Counted(losses.more, "more place") << " with losses\n";
    if (doubts.more > 0) out << "  and " << Counted(doubts.more, "more doubt") << '\n';
    out << target << ": " << Counted(recordings.size(), "recording") << ", " << Counted(samples, "sample") << ", "
        << bytes << " bytes; " << Verdict() << ".\n";
}

CJson CRecoverReport::ToJson() const {
    CJson json = {{"file", Readable(source)}, {"output", Readable(target)}, {"bytes", bytes},
                  {"complete", IsComplete()}, {"notes", fileNotes},         {"recordings", CJson::array()},
                  {"lost", CJson::array()},   {"moreLosses", losses.more},  {"moreDoubts", doubts.more}};
    for (const CRecording& recording : recordings)
        json["recordings"].push_back(RecordingJson(recording));
    AddRemarks(json, "lost", losses);
    AddRemarks(json, "doubts", doubts);
    return json;
}

}  // namespace vxfile
