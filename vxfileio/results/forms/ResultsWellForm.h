#pragma once

#include "vxfileio/results/ResultsWell.h"
#include "vxfileio/results/forms/ResponseForm.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::results {

/// The average: one child with all samples in one text.
struct CAverageField {
    using CObject = CResultsWell;
    std::string_view tag = "Average";
    static constexpr xmlarchive::CXmlElement kSamples{.tag = "Ave", .kind = xmlarchive::EXmlKind::Samples};

    constexpr xmlarchive::CXmlElement Element() const noexcept {
        return {.tag = tag, .kind = xmlarchive::EXmlKind::List, .children = {&kSamples, 1}};
    }
    const auto& Value(const CResultsWell& well) const noexcept { return well.Average; }
    void Put(CXmlFileArchive& archive, const CResultsWell& well) const {
        archive.PutAttribute(gd_xml_stream::kListSize, static_cast<std::int32_t>(well.Average.size()));
        archive.OpenChild(kSamples.tag).PutSamples(well.Average).CloseElement();
    }
    void Get(CXmlFileArchive& archive, CResultsWell& well) const {
        well.Average.resize(archive.GetListSize());
        archive.NextElement();
        if (xmlarchive::IsStartOf(archive, kSamples.tag)) archive.GetSamples(well.Average);
    }
};

inline constexpr xmlarchive::CValueField kDetectedField{"FPfastDetected", &CResultsWell::FPfastDetected};

/// A finding: without `FPfastDetected` its text is empty, and it isn't read.
template <class Member>
struct CFindingField : xmlarchive::CValueField<CResultsWell, Member> {
    constexpr CFindingField(std::string_view valueTag, Member CResultsWell::*value)
        : xmlarchive::CValueField<CResultsWell, Member>{valueTag, value} {}

    constexpr xmlarchive::CXmlElement Element() const noexcept {
        xmlarchive::CXmlElement element = xmlarchive::ElementOfValue<Member>(this->tag);
        element.onlyIf = kDetectedField.tag;
        return element;
    }
    void Put(CXmlFileArchive& archive, const CResultsWell& well) const {
        if (!well.FPfastDetected) return static_cast<void>(archive.PutValue(""));
        archive.PutValue(well.*(this->member));
    }
    void Get(CXmlFileArchive& archive, CResultsWell& well) const {
        if (well.FPfastDetected) archive.GetValue(well.*(this->member));
    }
};
}  // namespace vxfileio::results

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResultsWell> {
    using Well = CResultsWell;
    static constexpr std::string_view kElement = "Well";
    static constexpr CKeyField<std::int32_t> kKey{"WellID"};

    /// What every well has.
    static constexpr auto kHead = std::tuple{
        CValueField{"WellLabel", &Well::WellLabel},
        CValueField{"Dose", &Well::Dose},
        CPlacedValuesField{"FPfastDetectionTimes", "Time", &Well::FPfastDetectionTimes},
    };
    static constexpr std::size_t kShortSize = 1 + std::tuple_size_v<decltype(kHead)>;

    /// What only a well with detection times has.
    static constexpr auto kRest = std::tuple{
        CValueField{"AverageCount", &Well::AverageCount},
        CValueField{"AveragePreFPfastTime", &Well::AveragePreFPfastTime},
        CValueField{"AverageTick", &Well::AverageTick},
        results::CAverageField{},
        results::kDetectedField,
        results::CFindingField{"FPfastMaxAmp", &Well::FPfastMaxAmp},
        results::CFindingField{"FPfastMaxAmpTimeStamp", &Well::FPfastMaxAmpTimeStamp},
        results::CFindingField{"FPfastMinAmp", &Well::FPfastMinAmp},
        results::CFindingField{"FPfastMinAmpTimeStamp", &Well::FPfastMinAmpTimeStamp},
        results::CFindingField{"FPfastSlopeX0", &Well::FPfastSlopeX0},
        results::CFindingField{"FPfastSlopeY0", &Well::FPfastSlopeY0},
        results::CFindingField{"FPfastSlopeX1", &Well::FPfastSlopeX1},
        results::CFindingField{"FPfastSlopeY1", &Well::FPfastSlopeY1},
        CValueField{"FPmaxType", &Well::FPmaxType},
        CKeyedObjectsField{"Responses", &Well::Responses, &CResponse::Label},
        CKeyedObjectsField{"NormalizedResponses", &Well::NormalizedResponses, &CResponse::Label},
    };
    static constexpr auto kFields = std::tuple_cat(kHead, kRest);
};

}  // namespace vxfileio::xmlarchive
