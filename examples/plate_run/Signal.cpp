#include "Signal.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr std::int32_t kRecordedZero = 1024;
constexpr std::int64_t kStepsPerRecordedStep = 16;  // 0.005 mV in steps of kMillivoltPerAD

// The wells play the last minute over and over: the heart is calm then, and recordings of a minute differ only by what
// the compound does.
constexpr std::size_t kLoop = std::size_t{60} * 360;

// What the compound does, at doses in picomolar: at 1 uM it halves the signal. It prolongs the end of each beat by up
// to 45 %, and by half of that at 100 nM.
constexpr std::int64_t kHalfSignal = 1'000'000;
constexpr std::int64_t kHalfDelay = 100'000;
constexpr std::int64_t kMaxDelayPermille = 450;

// The end of a beat, in samples since the beat, and the beginning of the next one, in samples before it. The part
// between them gets shorter as the end gets longer. If there is no room for that, the end is lengthened less.
constexpr std::int64_t kEndBegins = 20;
constexpr std::int64_t kEndEnds = 125;
constexpr std::int64_t kNextBegins = 25;
constexpr std::int64_t kLeastBetween = 5;

/// Returns a pseudo-random number that depends only on the key.
std::uint64_t Scatter(std::uint64_t key) {
    key += 0x9E3779B97F4A7C15;
    key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9;
    key = (key ^ (key >> 27)) * 0x94D049BB133111EB;
    return key ^ (key >> 31);
}

/// Returns a pseudo-random number from -`limit` to `limit` that depends only on the well and the key.
std::int64_t Noise(const CWell& well, std::int64_t limit, std::int64_t key) {
    const auto choices = static_cast<std::uint64_t>(2 * limit + 1);
    const std::uint64_t scattered =
        Scatter((static_cast<std::uint64_t>(well.id) << 40) + static_cast<std::uint64_t>(key));
    return static_cast<std::int64_t>((scattered >> 32) * choices >> 32) - limit;
}

/// What a well makes of the recorded heart at one dose. No two measurements of living cells are the same, so both
/// numbers also vary a little.
struct CEffect {
    std::int64_t strength;       ///< In steps of this instrument per 1000 recorded steps.
    std::int64_t delayPermille;  ///< How much longer the end of a beat takes.
};

CEffect EffectOf(const CWell& well, std::int64_t dose) {
    const std::int64_t effective = dose * well.dosePermille / 1000;
    const std::int64_t gain = well.gainPermille * (1000 + Noise(well, 40, -1 - dose)) / 1000;
    return {kStepsPerRecordedStep * gain * kHalfSignal / (kHalfSignal + effective),
            kMaxDelayPermille * effective / (kHalfDelay + effective) + Noise(well, 25, -2 - dose)};
}

/// Returns which moment of the recorded beat is played `time` samples after the beat, in 1/1000 of a sample.
std::int64_t RecordedTime(std::int64_t time, std::int64_t beatLength, std::int64_t delayPermille) {
    constexpr std::int64_t kEnd = kEndEnds - kEndBegins;
    const std::int64_t next = beatLength - kNextBegins;
    const std::int64_t room = next - kLeastBetween - kEndBegins;
    if (time < kEndBegins || time >= next || room < kEnd) return 1000 * time;
    const std::int64_t stretch = std::min(1000 + delayPermille, 1000 * room / kEnd);
    const std::int64_t playedEnd = 1000 * kEndBegins + kEnd * stretch;
    if (1000 * time < playedEnd) return 1000 * kEndBegins + 1'000'000 * (time - kEndBegins) / stretch;
    return 1000 * kEndEnds + (1000 * time - playedEnd) * (next - kEndEnds) * 1000 / (1000 * next - playedEnd);
}

/// Returns the positions of the beats in the recorded signal: where it rises steeply for the first time in a while.
std::vector<std::int32_t> BeatsIn(const std::vector<std::int32_t>& heart) {
    constexpr std::size_t kRise = 18;
    constexpr std::int32_t kSteep = 200;
    constexpr std::int32_t kRefractory = 90;
    std::vector<std::int32_t> beats;
    for (std::size_t i = kRise; i < heart.size(); ++i) {
        const auto place = static_cast<std::int32_t>(i);
        const bool isSteep = heart[i] - heart[i - kRise] >= kSteep;
        if (isSteep && (beats.empty() || place - beats.back() >= kRefractory)) beats.push_back(place);
    }
    return beats;
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
    if (m_heart.size() > kLoop) m_heart.erase(m_heart.begin(), m_heart.end() - kLoop);
    m_beats = BeatsIn(m_heart);
    m_beats.insert(m_beats.begin(), 0);
    m_beats.push_back(static_cast<std::int32_t>(m_heart.size()));
}

std::int64_t CSignal::Recorded(std::int64_t beat, std::int64_t time) const {
    const std::int64_t last = std::ssize(m_heart) - 1;
    const auto at = [&](std::int64_t place) { return m_heart[static_cast<std::size_t>(std::min(place, last))]; };
    const std::int64_t place = beat + time / 1000;
    const std::int64_t rest = time % 1000;
    return at(place) * (1000 - rest) + at(place + 1) * rest;
}

void CSignal::Measure(const CWell& well, std::int64_t dose, std::int64_t firstSample,
                      std::span<std::uint16_t> samples) const {
    const auto length = static_cast<std::int64_t>(m_heart.size());
    const CEffect effect = EffectOf(well, dose);
    std::int64_t clock = firstSample;
    std::int64_t place = ((firstSample - well.delay) % length + length) % length;
    auto next = std::ranges::upper_bound(m_beats, place);
    for (std::uint16_t& sample : samples) {
        const std::int64_t beat = *std::prev(next);
        const std::int64_t time = RecordedTime(place - beat, *next - beat, effect.delayPermille);
        const std::int64_t voltage = Recorded(beat, time) * effect.strength / 1'000'000;
        sample = static_cast<std::uint16_t>(kADZero + voltage + Noise(well, well.noise, clock));
        ++clock;
        if (++place == length) place = 0;
        if (place == 0 || place == *next) next = std::ranges::upper_bound(m_beats, place);
    }
}
