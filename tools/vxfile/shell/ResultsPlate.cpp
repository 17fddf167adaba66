#include "tools/vxfile/shell/ResultsPlate.h"

#include <set>
#include <utility>

#include "tools/vxfile/document/ResultsWalk.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile {

namespace {

std::int64_t DoseOf(const CRecordingPlace& place) { return static_cast<std::int64_t>(place.dose); }

}  // namespace

CResultsPlate PlateOfResults(const std::string& path) {
    std::map<std::pair<std::string, std::int64_t>, std::set<std::int32_t>> wells;
    CResultsPlate plate;
    const auto take = [&](const CRecordingPlace& place) -> auto& { return wells[{place.task, DoseOf(place)}]; };
    plate.damage =
        WalkResults(path, {.well =
                               [&](const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well) {
                                   take(place).insert(wellID);
                                   std::string& label = plate.labels[wellID];
                                   if (label.empty()) label = Utf8(well.WellLabel);
                               },
                           .recording = take});
    for (const auto& [recording, ids] : wells) {
        if (recording.second < 0) continue;
        CRawDataRecordingHdr& header = plate.recordings.emplace_back().header;
        header.TaskName = recording.first;
        header.Dose = recording.second;
        for (const auto id : ids)
            header.WellChannels.emplace_back().ID = id;
    }
    return plate;
}

std::string WalkChosen(const std::string& path, const CPlateChoice& choice, vxfileio::results::CResultsRows& rows) {
    const auto isChosen = [&](const CRecordingPlace& place) { return choice.HasRecording(place.task, DoseOf(place)); };
    if (!rows.AreOfWells())
        return WalkResults(path, {.mean = [&](const CRecordingPlace& place, const CResponseMean& mean) {
                               if (isChosen(place)) rows.PutMean(place, mean);
                           }});
    return WalkResults(path, {.well = [&](const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well) {
                           if (isChosen(place) && choice.HasWell(wellID)) rows.PutWell(place, wellID, well);
                       }});
}

}  // namespace vxfile
