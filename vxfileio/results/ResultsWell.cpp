#include "vxfileio/results/ResultsWell.h"

#include <utility>

#include "vxfileio/results/ResultsFile.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

namespace {

/// The average: one child with all samples in one text.
struct CAverageField {
    std::string_view tag = "Average";
    std::string_view samplesTag = "Ave";

    void Put(CXmlFileArchive& archive, const CResultsWell& well) const {
        archive.PutAttribute("Size", static_cast<std::int32_t>(well.Average.size()));
        archive.OpenChild(samplesTag).PutSamples(well.Average).CloseElement();
    }
    void Get(CXmlFileArchive& archive, CResultsWell& well) const {
        well.Average.resize(archive.GetListSize());
        archive.NextElement();
        if (IsStartOf(archive, samplesTag)) archive.GetSamples(well.Average);
    }
};

}  // namespace

template <>
struct CXmlForm<CResultsWell> {
    using Well = CResultsWell;
    static constexpr std::string_view kElement = results::kWellElement;

    /// What every well has.
    static constexpr auto kHead = std::tuple{
        CValueField{"WellLabel", &Well::WellLabel},
        CValueField{"Dose", &Well::Dose},
        CPlacedValuesField{"FPfastDetectionTimes", "Time", &Well::FPfastDetectionTimes},
    };
    /// What a well with detection times has, up to the word on whether `kFindings` hold anything.
    static constexpr auto kAverage = std::tuple{
        CValueField{"AverageCount", &Well::AverageCount},
        CValueField{"AveragePreFPfastTime", &Well::AveragePreFPfastTime},
        CValueField{"AverageTick", &Well::AverageTick},
        CAverageField{},
        CValueField{"FPfastDetected", &Well::FPfastDetected},
    };
    static constexpr auto kFindings = std::tuple{
        CValueField{"FPfastMaxAmp", &Well::FPfastMaxAmp},
        CValueField{"FPfastMaxAmpTimeStamp", &Well::FPfastMaxAmpTimeStamp},
        CValueField{"FPfastMinAmp", &Well::FPfastMinAmp},
        CValueField{"FPfastMinAmpTimeStamp", &Well::FPfastMinAmpTimeStamp},
        CValueField{"FPfastSlopeX0", &Well::FPfastSlopeX0},
        CValueField{"FPfastSlopeY0", &Well::FPfastSlopeY0},
        CValueField{"FPfastSlopeX1", &Well::FPfastSlopeX1},
        CValueField{"FPfastSlopeY1", &Well::FPfastSlopeY1},
    };
    static constexpr auto kResponses = std::tuple{
        CWordField{"FPmaxType", &Well::FPmaxType},
        CKeyedObjectsField{"Responses", &Well::Responses, &CResponse::Label},
        CKeyedObjectsField{"NormalizedResponses", &Well::NormalizedResponses, &CResponse::Label},
    };
};

namespace {

using CWellForm = CXmlForm<CResultsWell>;

/// Writes the elements of these fields with empty text.
template <class... Fields>
void PutEmpty(CXmlFileArchive& archive, const std::tuple<Fields...>& fields) {
    std::apply([&](const auto&... field) { (SaveValue(archive, field.tag, ""), ...); }, fields);
}

}  // namespace

}  // namespace vxfileio::xmlarchive

using vxfileio::xmlarchive::CWellForm;

CResultsWell::CResultsWell(std::uint64_t dose, std::string label, std::uint32_t samples, std::int64_t averageTick,
                           std::int64_t preFPfastTime)
    : WellLabel(std::move(label)),
      Dose(dose),
      AveragePreFPfastTime(preFPfastTime),
      Average(samples),
      AverageTick(averageTick) {}

void CResultsWell::SetResults(enResponseType type, enValueType valueType, double value) {
    auto& responses = valueType == enValueType::Normalized ? NormalizedResponses : Responses;
    responses[type] = CResponse{ResponseTypeToString(type), value};
}

double CResultsWell::GetResults(enResponseType type, enValueType valueType) const {
    const auto& responses = valueType == enValueType::Normalized ? NormalizedResponses : Responses;
    const auto response = responses.find(type);
    return response == responses.end() ? 0.0 : response->second.Value;
}

bool CResultsWell::ResultsExist(enResponseType type, enValueType valueType) const {
    return (valueType == enValueType::Normalized ? NormalizedResponses : Responses).contains(type);
}

double CResultsWell::GetAveVoltage(std::uint32_t sample) const {
    return sample < Average.size() ? Average[sample] : 0.0;
}

std::int64_t CResultsWell::GetAveTimeStamp(std::uint32_t sample) const {
    // Unsigned, so that absurd ticks wrap around instead of overflowing.
    const std::uint32_t ticks = sample + 1;
    return static_cast<std::int64_t>(ticks * static_cast<std::uint64_t>(AverageTick) -
                                     static_cast<std::uint64_t>(AveragePreFPfastTime));
}

void CResultsWell::ClearResponses() {
    Responses.clear();
    ClearNormalizedResponses();
}

void CResultsWell::ClearNormalizedResponses() { NormalizedResponses.clear(); }

void CResultsWell::Clear() { *this = CResultsWell(); }

void CResultsWell::Save(CXmlFileArchive& archive) const {
    vxfileio::xmlarchive::PutFields(archive, *this, CWellForm::kHead);
    if (FPfastDetectionTimes.empty()) return;
    vxfileio::xmlarchive::PutFields(archive, *this, CWellForm::kAverage);
    if (FPfastDetected) {
        vxfileio::xmlarchive::PutFields(archive, *this, CWellForm::kFindings);
    } else {
        vxfileio::xmlarchive::PutEmpty(archive, CWellForm::kFindings);
    }
    vxfileio::xmlarchive::PutFields(archive, *this, CWellForm::kResponses);
}

void CResultsWell::Load(CXmlFileArchive& archive) {
    FPfastDetected = false;
    FPfastMaxAmp = FPfastMinAmp = 0.0;
    FPfastMaxAmpTimeStamp = FPfastMinAmpTimeStamp = 0;
    FPmaxType = enFPmaxType::Undefined;
    vxfileio::xmlarchive::ForEachEventUntil(archive, CWellForm::kElement, [&] {
        if (vxfileio::xmlarchive::GetField(archive, *this, CWellForm::kHead)) return;
        if (vxfileio::xmlarchive::GetField(archive, *this, CWellForm::kAverage)) return;
        if (vxfileio::xmlarchive::GetField(archive, *this, CWellForm::kResponses)) return;
        if (FPfastDetected) vxfileio::xmlarchive::GetField(archive, *this, CWellForm::kFindings);
    });
}
