#pragma once

// The raw recordings for all programs: rounds of 54 wells, with one segment per well in each round. Shares no code with
// the library.

#include <cstdint>
#include <cstdlib>
#include <vector>

inline constexpr int kWells = 54;
inline constexpr int kFirstWell = 10;
inline constexpr int kOneWell = 36;  // the well that is read alone
inline constexpr long kTick = 10;
inline constexpr int kADZero = 32;
inline constexpr double kUnitsPerAD = 0.0005;

/// The amount of data: `ROUNDS SAMPLES` after mode and file on the command line.
struct CShape {
    long rounds = 0;
    long samples = 0;

    explicit CShape(char** argv) : rounds(std::atol(argv[3])), samples(std::atol(argv[4])) {}
    long TimeFrom(long round) const { return round * samples * kTick; }
    long TimeTo(long round) const { return TimeFrom(round) + (samples - 1) * kTick; }
};

inline constexpr int kOwnSamples = 8;  // at the front of a segment; the others are the same in all segments

inline std::uint16_t OwnSample(long round, int well, int i) {
    return static_cast<std::uint16_t>(round * 54 + well + i);
}

inline std::vector<std::uint16_t> MakeSamples(const CShape& shape) {
    std::vector<std::uint16_t> samples;
    for (long i = 0; i < shape.samples; ++i)
        samples.push_back(static_cast<std::uint16_t>(i * 37));
    return samples;
}

inline void TurnInto(std::uint16_t* samples, long round, int well) {
    for (int i = 0; i < kOwnSamples; ++i)
        samples[i] = OwnSample(round, well, i);
}

/// Returns whether to check every sample. A timed run checks only the samples that differ between segments, and the
/// last one.
inline const bool kLooksAtAll = std::getenv("LOOK_AT_ALL_SAMPLES") != nullptr;

/// Returns whether these are the samples of that round and well. EDFlib uses another sample type.
template <class Sample>
bool AreSamples(const Sample* samples, const CShape& shape, long round, int well) {
    for (int i = 0; i < kOwnSamples; ++i)
        if (static_cast<std::uint16_t>(samples[i]) != OwnSample(round, well, i)) return false;
    for (long i = kLooksAtAll ? kOwnSamples : shape.samples - 1; i < shape.samples; ++i)
        if (static_cast<std::uint16_t>(samples[i]) != static_cast<std::uint16_t>(i * 37)) return false;
    return true;
}

/// The samples of some wells, one well after the other, in memory that has been used before.
struct CArrays {
    std::size_t segmentBytes;
    std::size_t perSegment;
    std::size_t perWell;
    std::vector<std::uint16_t> samples;

    CArrays(const CShape& shape, int wells)
        : segmentBytes(2 * static_cast<std::size_t>(shape.samples)),
          perSegment(static_cast<std::size_t>(shape.samples)),
          perWell(static_cast<std::size_t>(shape.rounds) * perSegment),
          samples(static_cast<std::size_t>(wells) * perWell) {}

    std::uint16_t* Well(int place) { return samples.data() + static_cast<std::size_t>(place) * perWell; }
    std::uint16_t* Segment(long round, int place) { return Well(place) + static_cast<std::size_t>(round) * perSegment; }

    /// Returns whether this place has the samples of a well.
    bool IsWell(const CShape& shape, int place, int well) {
        for (long round = 0; round < shape.rounds; ++round)
            if (!AreSamples(Segment(round, place), shape, round, well)) return false;
        return true;
    }
    bool AreWhole(const CShape& shape) {
        for (int well = 0; well < kWells; ++well)
            if (!IsWell(shape, well, well)) return false;
        return true;
    }
};
