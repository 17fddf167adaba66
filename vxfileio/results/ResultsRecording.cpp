#include "vxfileio/results/ResultsRecording.h"

#include "vxfileio/results/forms/ResultsForm.h"

CResultsRecording::CResultsRecording(std::uint64_t dose, const std::vector<std::int32_t>& wellIDs,
                                     const std::vector<std::string>& wellLabels, std::uint32_t samples,
                                     std::int64_t averageTick, std::int64_t preFPfastTime)
    : Dose(dose) {
    for (std::size_t i = 0; i < wellIDs.size(); ++i) {
        const std::string label = i < wellLabels.size() ? wellLabels[i] : std::string();
        Wells.insert_or_assign(wellIDs[i], CResultsWell(dose, label, samples, averageTick, preFPfastTime));
    }
}

void CResultsRecording::ClearResponses() { NormalizedResponses.clear(); }

void CResultsRecording::Clear() { *this = CResultsRecording(); }

void CResultsRecording::Save(CXmlFileArchive& archive) const { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CResultsRecording::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
