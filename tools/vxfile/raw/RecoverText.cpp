#include "tools/vxfile/raw/RecoverText.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Text.h"
#include "verify/raw/RemarkText.h"

namespace vxfile {

using namespace vxfileio::recovery;

namespace {

void PrintWells(std::ostream& out, std::map<std::int32_t, CKeptWell> kept, const CPlateView& view) {
    std::erase_if(kept, [&](const auto& well) { return !view.choice.HasWell(well.first); });
    std::vector<std::int32_t> same;
    for (auto well = kept.begin(); well != kept.end(); ++well) {
        same.push_back(well->first);
        if (const auto next = std::next(well); next != kept.end() && next->second == well->second) continue;
        const CKeptWell& what = well->second;
        out << "    " << (same.size() == 1 ? "well " : "wells ") << ListText(same)
            << (same.size() == 1 ? ": " : ", each: ") << Counted(what.segments, "segment") << ", "
            << Counted(what.samples, "sample") << ", times " << view.TimesText(what.from, what.to) << '\n';
        same.clear();
    }
}

/// Prints those remarks that belong to a recording, or to none.
void PrintRemarks(std::ostream& out, std::string_view kind, const CRemarks& remarks,
                  const std::optional<std::uint32_t>& recording, const CPlateView& view) {
    for (const CRemark& remark : remarks.first) {
        if (remark.recording != recording || (remark.wellID && !view.choice.HasWell(*remark.wellID))) continue;
        out << "    " << kind;
        if (remark.from == remark.to) {
            out << ": at byte " << remark.from;
        } else {
            out << ": bytes " << remark.from << " to " << remark.to;
        }
        if (remark.wellID) out << ", well " << *remark.wellID;
        out << ": " << TextOf(remark) << '\n';
    }
}

const char* VerdictOn(const CReport& report, const CPlateChoice& choice) {
    if (report.IsComplete()) return "nothing was lost";
    if (!choice.IsAll()) return "something was lost or is in doubt, maybe elsewhere";
    if (!report.losses.None()) return "what was lost is listed above";
    return "every segment in the file was kept, but the doubts above remain";
}

/// Puts each remark into the list of that name, of its recording or of the whole file.
void AddRemarks(CJson& json, const char* list, const CRemarks& remarks) {
    for (const CRemark& remark : remarks.first) {
        CJson entry = {{"from", remark.from}, {"to", remark.to}, {"why", TextOf(remark)}};
        entry["well"] = remark.wellID ? CJson(*remark.wellID) : CJson();
        (remark.recording ? json["recordings"][*remark.recording] : json)[list].push_back(entry);
    }
}

CJson NotesJson(const std::vector<CNote>& notes, const std::string& header) {
    CJson json = CJson::array();
    for (const CNote& note : notes)
        json.push_back(TextOf(note, header));
    return json;
}

CJson RecordingJson(const CReportedRecording& recording, const CPlateLabels& labels) {
    CJson wells = CJson::array();
    for (const auto& [wellID, kept] : recording.wells) {
        wells.push_back({{"well", wellID},
                         {"segments", kept.segments},
                         {"samples", kept.samples},
                         {"from", kept.from},
                         {"to", kept.to}});
        if (labels.AreKnown()) wells.back()["label"] = labels.Of(wellID);
    }
    return {{"task", Readable(recording.task)},
            {"recording", recording.number},
            {"position", recording.position},
            {"unfinished", recording.unfinished},
            {"notes", NotesJson(recording.notes, "its header")},
            {"wells", wells},
            {"lost", CJson::array()},
            {"doubts", CJson::array()}};
}

/// Prints a recording with what was kept, lost or in doubt.
void PrintRecording(std::ostream& out, const CReport& report, std::uint32_t index, const CPlateView& view) {
    const CReportedRecording& recording = report.recordings[index];
    out << "  " << Readable(recording.task) << ' ' << recording.number
        << (recording.unfinished ? ", which its writer never finished" : "")
        << (recording.wells.empty() ? ": no segments" : "") << '\n';
    for (const CNote& note : recording.notes)
        out << "    " << TextOf(note, "its header") << '\n';
    PrintWells(out, recording.wells, view);
    PrintRemarks(out, "lost", report.losses, index, view);
    PrintRemarks(out, "doubt", report.doubts, index, view);
}

}  // namespace

void PrintReport(std::ostream& out, const CReport& report, const CRecoverNames& names, const CPlateView& view) {
    for (const CNote& note : report.notes)
        out << names.source << ": " << TextOf(note, "the file header") << '\n';
    PrintRemarks(out, "lost", report.losses, std::nullopt, view);
    PrintRemarks(out, "doubt", report.doubts, std::nullopt, view);
    std::uint64_t samples = 0;
    for (std::uint32_t i = 0; i < report.recordings.size(); ++i) {
        const CReportedRecording& recording = report.recordings[i];
        for (const auto& well : recording.wells)
            samples += well.second.samples;
        if (view.choice.HasRecording(recording.task, recording.dose)) PrintRecording(out, report, i, view);
    }
    if (report.losses.more > 0) out << "  and " << Counted(report.losses.more, "more place") << " with losses\n";
    if (report.doubts.more > 0) out << "  and " << Counted(report.doubts.more, "more doubt") << '\n';
    if (report.isGrowing) out << "  The file is still being written; what came since isn't in the new file.\n";
    out << names.target << ": " << Counted(report.recordings.size(), "recording") << ", " << Counted(samples, "sample")
        << ", " << report.bytes << " bytes; " << VerdictOn(report, view.choice) << ".\n";
}

CJson ToJson(const CReport& report, const CRecoverNames& names, const CPlateView& view) {
    CJson json = {{"file", Readable(names.source)},
                  {"output", Readable(names.target)},
                  {"bytes", report.bytes},
                  {"complete", report.IsComplete()},
                  {"notes", NotesJson(report.notes, "the file header")},
                  {"recordings", CJson::array()},
                  {"lost", CJson::array()},
                  {"moreLosses", report.losses.more},
                  {"moreDoubts", report.doubts.more}};
    for (const CReportedRecording& recording : report.recordings)
        json["recordings"].push_back(RecordingJson(recording, view.labels));
    if (view.labels.AreKnown()) json["settings"] = Utf8(view.labels.Source());
    AddRemarks(json, "lost", report.losses);
    AddRemarks(json, "doubts", report.doubts);
    return json;
}

}  // namespace vxfile
