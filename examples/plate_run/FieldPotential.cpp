#include "FieldPotential.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace {

/// The samples [first, end) of an average.
struct CRange {
    std::uint32_t first;
    std::uint32_t end;
};

/// Returns the samples of an average between two times, both inclusive.
CRange SamplesBetween(const CResultsWell& well, std::int64_t from, std::int64_t to) {
    CRange range{0, well.GetAveSamples()};
    while (range.first < range.end && well.GetAveTimeStamp(range.first) < from)
        ++range.first;
    while (range.first < range.end && well.GetAveTimeStamp(range.end - 1) > to)
        --range.end;
    return range;
}

/// Returns the first sample in the range with the largest `heightOf(sample)`. The range must not be empty.
template <class HeightOf>
std::uint32_t HighestIn(CRange range, HeightOf heightOf) {
    std::uint32_t highest = range.first;
    for (std::uint32_t sample = range.first; sample < range.end; ++sample) {
        if (heightOf(sample) > heightOf(highest)) highest = sample;
    }
    return highest;
}

/// Returns the height of a sample above the straight line between the ends of the range. The line approximates the
/// drifting voltage without a peak.
double HeightAbove(const CResultsWell& well, CRange range, std::uint32_t sample) {
    const double from = well.GetAveVoltage(range.first);
    const double to = well.GetAveVoltage(range.end - 1);
    const double way = static_cast<double>(sample - range.first) / (range.end - 1 - range.first);
    return well.GetAveVoltage(sample) - (from + way * (to - from));
}

/// Finds the steepest section of `length` samples in the range.
void FindSlope(CResultsWell& well, CRange range, std::uint32_t length) {
    if (range.end - range.first <= length) return;
    const std::uint32_t start = HighestIn({range.first, range.end - length}, [&](std::uint32_t sample) {
        return well.GetAveVoltage(sample + length) - well.GetAveVoltage(sample);
    });
    well.FPfastSlopeX0 = static_cast<double>(well.GetAveTimeStamp(start));
    well.FPfastSlopeY0 = well.GetAveVoltage(start);
    well.FPfastSlopeX1 = static_cast<double>(well.GetAveTimeStamp(start + length));
    well.FPfastSlopeY1 = well.GetAveVoltage(start + length);
}

}  // namespace

void AverageBeats(CResultsWell& well, const CTrace& trace) {
    const std::size_t length = well.Average.size();
    std::vector<std::int64_t> sums(length);  // in AD steps, so that only the final result is rounded
    well.AverageCount = 0;
    for (const std::int64_t beat : well.FPfastDetectionTimes) {
        const std::int64_t first = (beat + well.GetAveTimeStamp(0) - trace.begin) / trace.tick;
        if (first < 0 || first + std::ssize(sums) > std::ssize(trace.samples)) continue;
        const auto samples = std::span(trace.samples).subspan(static_cast<std::size_t>(first), length);
        std::ranges::transform(sums, samples, sums.begin(), std::plus<>());
        ++well.AverageCount;
    }
    if (!well.AverageExist()) return;
    std::ranges::transform(sums, well.Average.begin(), [&](std::int64_t sum) {
        return static_cast<double>(sum) / well.AverageCount * trace.voltsPerAD;
    });
}

void FindFastPotential(CResultsWell& well, const CPropAnalyzer& analyzer) {
    const CRange around = SamplesBetween(well, -analyzer.FPfastRiseTimeMax, analyzer.FPfastRiseTimeMax);
    well.FPfastDetected = well.AverageExist() && around.first < around.end;
    if (!well.FPfastDetected) return;
    const auto voltage = [&](std::uint32_t sample) { return well.GetAveVoltage(sample); };
    const std::uint32_t highest = HighestIn(around, voltage);
    const std::uint32_t lowest = HighestIn(around, [&](std::uint32_t sample) { return -voltage(sample); });
    well.FPfastMaxAmp = voltage(highest);
    well.FPfastMaxAmpTimeStamp = well.GetAveTimeStamp(highest);
    well.FPfastMinAmp = voltage(lowest);
    well.FPfastMinAmpTimeStamp = well.GetAveTimeStamp(lowest);
    FindSlope(well, around, static_cast<std::uint32_t>(analyzer.FPSlopeInterval / well.AverageTick));
}

std::int64_t FindMaximum(CResultsWell& well, const CPropAnalyzer& analyzer) {
    const CRange range = SamplesBetween(well, analyzer.FPmaxSearchBegin, analyzer.FPmaxSearchEnd);
    if (!well.AverageExist() || range.end - range.first < 3) return 0;
    const auto height = [&](std::uint32_t sample) { return HeightAbove(well, range, sample); };
    const std::uint32_t farthest = HighestIn(range, [&](std::uint32_t sample) { return std::abs(height(sample)); });
    well.FPmaxType = height(farthest) > 0.0 ? enFPmaxType::PositivePeak : enFPmaxType::NegativePeak;
    return well.GetAveTimeStamp(farthest);
}
