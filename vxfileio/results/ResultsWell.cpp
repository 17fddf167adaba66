#include "vxfileio/results/ResultsWell.h"

#include <utility>

#include "vxfileio/results/forms/ResultsForm.h"

using CForm = vxfileio::xmlarchive::CXmlForm<CResultsWell>;

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

double CResultsWell::GetAveVoltage(std::uint32_t sample) const noexcept {
    return sample < Average.size() ? Average[sample] : 0.0;
}

std::int64_t CResultsWell::GetAveTimeStamp(std::uint32_t sample) const noexcept {
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
    vxfileio::xmlarchive::PutFields(archive, CForm::kHead, *this);
    if (!FPfastDetectionTimes.empty()) vxfileio::xmlarchive::PutFields(archive, CForm::kRest, *this);
}

void CResultsWell::Load(CXmlFileArchive& archive) {
    FPfastDetected = false;
    FPfastMaxAmp = FPfastMinAmp = 0.0;
    FPfastMaxAmpTimeStamp = FPfastMinAmpTimeStamp = 0;
    FPmaxType = enFPmaxType::Undefined;
    vxfileio::xmlarchive::LoadFields<CForm>(archive, *this);
}
