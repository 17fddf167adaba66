#include "vxfileio/results/ResultsRecording.h"

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

namespace {

/// The wells, each with its key as the first child, by which alone it is found.
struct CResultsWellsField {
    std::string_view tag = "Wells";

    void Put(CXmlFileArchive& archive, const CResultsRecording& recording) const {
        PutList(archive, recording.Wells, [&](const auto& well) {
            archive.OpenChild(results::kWellElement);
            SaveValue(archive, results::kWellIDElement, well.first);
            well.second.Save(archive);
            archive.CloseElement();
        });
    }
    void Get(CXmlFileArchive& archive, CResultsRecording& recording) const {
        const std::size_t size = archive.GetListSize();
        for (std::size_t count = 0; count < size; ++count) {
            if (!archive.NextElement() || !archive.NextElement()) return;  // Well, then WellID
            std::int32_t wellID = 0;
            if (archive.TagName() == results::kWellIDElement) archive.GetValue(wellID);
            CResultsWell well;
            well.Load(archive);
            recording.Wells[wellID] = std::move(well);
        }
        if (size > 0) archive.NextElement();  // the end tag, which a list without entries doesn't have
    }
};

}  // namespace

template <>
struct CXmlForm<CResultsRecording> {
    static constexpr std::string_view kElement = results::kRecordingElement;
    static constexpr auto kFields = std::tuple{
        CValueField{"Dose", &CResultsRecording::Dose},
        CKeyedObjectsField{"NormalizedResponses", &CResultsRecording::NormalizedResponses, &CResponseMean::Label},
        CResultsWellsField{},
    };
};

}  // namespace vxfileio::xmlarchive

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
