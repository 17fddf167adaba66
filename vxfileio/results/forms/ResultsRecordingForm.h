#pragma once

#include "vxfileio/results/ResultsRecording.h"
#include "vxfileio/results/forms/ResponseMeanForm.h"
#include "vxfileio/results/forms/ResultsWellForm.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::results {

/// The wells, each with its key as the first child. Wells and keys are found by their places alone.
struct CResultsWellsField {
    using CObject = CResultsRecording;
    using CEntryForm = xmlarchive::CXmlForm<CResultsWell>;
    std::string_view tag = "Wells";

    constexpr xmlarchive::CXmlElement Element() const noexcept { return xmlarchive::ElementOfList<CEntryForm>(tag); }
    const auto& Value(const CResultsRecording& recording) const noexcept { return recording.Wells; }
    void Put(CXmlFileArchive& archive, const CResultsRecording& recording) const {
        xmlarchive::PutList(archive, recording.Wells, [&](const auto& well) {
            archive.OpenChild(CEntryForm::kElement);
            xmlarchive::SaveValue(archive, CEntryForm::kKey.tag, well.first);
            well.second.Save(archive);
            archive.CloseElement();
        });
    }
    void Get(CXmlFileArchive& archive, CResultsRecording& recording) const {
        const std::size_t size = archive.GetListSize();
        for (std::size_t count = 0; count < size; ++count) {
            if (!archive.NextElement() || !archive.NextElement()) return;  // Well, then WellID
            const std::int32_t wellID = CEntryForm::kKey.Read(archive);
            CResultsWell well;
            well.Load(archive);
            recording.Wells[wellID] = std::move(well);
        }
        if (size > 0) archive.NextElement();  // the end tag, which a list without entries doesn't have
    }
};

}  // namespace vxfileio::results

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResultsRecording> {
    static constexpr std::string_view kElement = "Recording";
    static constexpr auto kFields = std::tuple{
        CValueField{"Dose", &CResultsRecording::Dose},
        CKeyedObjectsField{"NormalizedResponses", &CResultsRecording::NormalizedResponses, &CResponseMean::Label},
        results::CResultsWellsField{},
    };
};

}  // namespace vxfileio::xmlarchive
