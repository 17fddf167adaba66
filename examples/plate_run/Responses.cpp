#include "Responses.h"

#include <cmath>
#include <vector>

namespace {

double MeanOf(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / static_cast<double>(values.size());
}

/// Returns the sample standard deviation; 0.0 for a single value.
double StdDevOf(const std::vector<double>& values, double mean) {
    if (values.size() < 2) return 0.0;
    double sum = 0.0;
    for (const double value : values)
        sum += (value - mean) * (value - mean);
    return std::sqrt(sum / static_cast<double>(values.size() - 1));
}

/// Returns the normalised values of one response that count in one recording.
std::vector<double> CountedValues(const CResults& results, enTask task, std::int32_t recording, enResponseType type,
                                  const CPropAnalyzer& analyzer) {
    std::vector<double> values;
    for (const std::int32_t wellID : results.GetWellIDs(task, recording)) {
        const CResultsWell& well = *results.GetWellResults(task, recording, wellID);
        const bool counts = analyzer.IsWellAnalyzed(task, recording, wellID) &&
                            analyzer.GetResponseMark(task, recording, wellID, type) != enAnalysisMark::Deselected;
        if (counts && well.ResultsExist(type, enValueType::Normalized))
            values.push_back(well.GetResults(type, enValueType::Normalized));
    }
    return values;
}

}  // namespace

void SetResponses(CResultsWell& well, std::int64_t maximumTime) {
    constexpr double kMicrosecondsPerSecond = 1e6;
    if (!well.FPfastDetected) return;
    well.SetResults(enResponseType::NaAmplitude, enValueType::Plain, well.FPfastMaxAmp - well.FPfastMinAmp);
    if (well.FPfastSlopeX1 > well.FPfastSlopeX0) {
        const double seconds = (well.FPfastSlopeX1 - well.FPfastSlopeX0) / kMicrosecondsPerSecond;
        well.SetResults(enResponseType::NaSlope, enValueType::Plain,
                        (well.FPfastSlopeY1 - well.FPfastSlopeY0) / seconds);
    }
    if (maximumTime > 0)
        well.SetResults(enResponseType::QTInterval, enValueType::Plain, static_cast<double>(maximumTime));
}

void NormalizeResponses(CResults& results, enTask task) {
    for (std::int32_t recording = 0; recording < results.GetRecordingCount(task); ++recording) {
        for (const std::int32_t wellID : results.GetWellIDs(task, recording)) {
            const CResultsWell& first = *results.GetWellResults(task, 0, wellID);
            CResultsWell& well = *results.GetWellResults(task, recording, wellID);
            for (const auto& [type, response] : well.Responses) {
                const double unit = first.GetResults(type, enValueType::Plain);
                if (unit != 0.0) well.SetResults(type, enValueType::Normalized, response.Value / unit);
            }
        }
    }
}

void SetCompoundMeans(CResults& results, enTask task, const CPropAnalyzer& analyzer) {
    for (std::int32_t recording = 0; recording < results.GetRecordingCount(task); ++recording) {
        for (const enResponseType type : AllResponseTypes()) {
            const std::vector<double> values = CountedValues(results, task, recording, type, analyzer);
            if (values.empty()) continue;
            const double mean = MeanOf(values);
            results.SetCompoundResults(task, recording, type, mean, StdDevOf(values, mean),
                                       static_cast<std::uint32_t>(values.size()));
        }
    }
}
