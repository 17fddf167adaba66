#include "Signal.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr std::int32_t kRecordedZero = 1024;
constexpr std::int64_t kStepsPerRecordedStep = 16;  // 0.005 mV in steps of kMillivoltPerAD
constexpr std::int64_t kHalfDose = 300'000;         // at 300 nM the compound halves the signal

/// Returns a pseudo-random number that depends only on the key.
std::uint64_t Scatter(std::uint64_t key) {
    key += 0x9E3779B97F4A7C15;
    key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9;
    key = (key ^ (key >> 27)) * 0x94D049BB133111EB;
    return key ^ (key >> 31);
}

/// Returns the noise of a well at a time: from -`well.noise` to `well.noise`.
std::int64_t Noise(const CWell& well, std::int64_t clock) {
    const std::uint64_t key = (static_cast<std::uint64_t>(well.id) << 40) + static_cast<std::uint64_t>(clock);
    const auto choices = static_cast<std::uint64_t>(2 * well.noise + 1);
    return static_cast<std::int64_t>((Scatter(key) >> 32) * choices >> 32) - well.noise;
}

}  // namespace

CSignal::CSignal(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (bytes.size() < 2) throw std::runtime_error("Cannot read the signal " + path);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        m_heart.push_back(low + 256 * high - kRecordedZero);
    }
}

void CSignal::Measure(const CWell& well, std::int64_t dose, std::int64_t firstSample,
                      std::span<std::uint16_t> samples) const {
    const auto length = static_cast<std::int64_t>(m_heart.size());
    const std::int64_t strength = kStepsPerRecordedStep * well.gainPermille * kHalfDose / (kHalfDose + dose);
    std::int64_t clock = firstSample;
    std::int64_t place = ((firstSample - well.delay) % length + length) % length;
    for (std::uint16_t& sample : samples) {
        const std::int64_t voltage = m_heart[static_cast<std::size_t>(place)] * strength / 1000;
        sample = static_cast<std::uint16_t>(kADZero + voltage + Noise(well, clock));
        ++clock;
        if (++place == length) place = 0;
    }
}
