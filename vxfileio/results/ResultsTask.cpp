#include "vxfileio/results/ResultsTask.h"

#include "vxfileio/results/forms/ResultsForm.h"

CResultsTask::CResultsTask(const std::vector<std::uint64_t>& doses, const std::vector<std::int32_t>& wellIDs,
                           const std::vector<std::string>& wellLabels, std::uint32_t samples, std::int64_t averageTick,
                           std::int64_t preFPfastTime) {
    Recordings.reserve(doses.size());
    for (const std::uint64_t dose : doses)
        Recordings.emplace_back(dose, wellIDs, wellLabels, samples, averageTick, preFPfastTime);
}

void CResultsTask::Clear() { Recordings.clear(); }

void CResultsTask::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResultsTask::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
