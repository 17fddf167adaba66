#include "Beats.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

/// The minimum time between two beats: 250 ms.
constexpr std::int64_t kRefractoryTime = 250'000;

constexpr double kNever = std::numeric_limits<double>::infinity();

/// Returns by how much each sample exceeds the one `distance` samples earlier; 0 for the first `distance` samples.
std::vector<std::int32_t> RisesOf(const std::vector<std::int32_t>& samples, std::size_t distance) {
    std::vector<std::int32_t> rises(samples.size());
    for (std::size_t i = distance; i < samples.size(); ++i)
        rises[i] = samples[i] - samples[i - distance];
    return rises;
}

/// Returns the minimum rise of a beat, in AD steps.
double ThresholdOf(const std::vector<std::int32_t>& rises, const CTrace& trace, const CPropAnalyzer& analyzer) {
    const double least = analyzer.FPfastAmplitude / trace.voltsPerAD;
    if (!analyzer.FPfastAutoAdjust) return least;
    const std::int64_t seen =
        std::clamp<std::int64_t>(analyzer.FPfastAutoAdjustTime / trace.tick, 0, std::ssize(rises));
    const double greatest = seen == 0 ? 0.0 : *std::max_element(rises.begin(), rises.begin() + seen);
    return greatest < least ? kNever : greatest * analyzer.FPfastAutoAdjustFactor;
}

}  // namespace

std::vector<std::int64_t> FindBeats(const CTrace& trace, const CPropAnalyzer& analyzer) {
    const auto distance = static_cast<std::size_t>(analyzer.FPfastRiseTimeMax / trace.tick);
    const std::vector<std::int32_t> rises = RisesOf(trace.samples, distance);
    const double threshold = ThresholdOf(rises, trace, analyzer);
    std::vector<std::int64_t> beats;
    for (std::size_t i = 1; i < rises.size(); ++i) {
        if (rises[i - 1] >= threshold || rises[i] < threshold) continue;
        const std::int64_t time = trace.TimeOf(i);
        if (beats.empty() || time - beats.back() >= kRefractoryTime) beats.push_back(time);
    }
    return beats;
}

double BeatsPerMinute(const std::vector<std::int64_t>& beats) {
    constexpr double kMinute = 60e6;
    if (beats.size() < 2) return 0.0;
    return kMinute * static_cast<double>(beats.size() - 1) / static_cast<double>(beats.back() - beats.front());
}
