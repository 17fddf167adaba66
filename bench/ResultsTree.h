#pragma once

// The results of one compound as stored by the programs that don't use the library, and the numbers for all programs.
// Shares no code with the library.

#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct CTree {
    struct CWell {
        std::string label;
        std::vector<std::int64_t> times;
        std::vector<double> average;
        double findings[8] = {};  // in file order; time stamps are whole numbers
        std::map<int, double> responses, normalized;
    };
    struct CRecording {
        std::uint64_t dose = 0;
        std::map<int, CWell> wells;
    };
    std::vector<CRecording> recordings;
};

inline constexpr int kDoses = 11;
inline constexpr int kWells = 54;
inline constexpr int kTimes = 300;
inline constexpr int kSamples = 2000;
inline constexpr int kFirstWell = 10;
inline constexpr const char* kResponses[] = {"NotDefined", "Na-Amplitude", "Na-Slope", "QT-Interval"};

inline constexpr const char* kFindings[] = {"FPfastMaxAmp",          "FPfastMaxAmpTimeStamp", "FPfastMinAmp",
                                            "FPfastMinAmpTimeStamp", "FPfastSlopeX0",         "FPfastSlopeY0",
                                            "FPfastSlopeX1",         "FPfastSlopeY1"};

/// Returns whether a finding is a time stamp.
inline bool IsWholeFinding(int i) { return i == 1 || i == 3; }

inline std::int64_t TimeOf(int dose, int well, int i) { return 1'000'000LL * i + 977LL * well + 31LL * dose; }

/// A sample of the average beat of a well, in volts: a spike of 0.7 mV, a wave of 40 uV after it, 3 uV of noise.
inline double SampleOf(int dose, int well, int i) {
    const double spike = -7e-4 * std::exp(-i / 15.0) * std::cos(i / 9.0);
    const double wave = 4e-5 * std::exp(-std::pow((i - 1200 + 10 * dose) / 200.0, 2));
    const double noise = 2e-6 * std::sin(12.9898 * i + well) + 1e-6 * std::sin(78.233 * i + 2 * well);
    return (spike + wave) * (1 + 0.01 * well) + noise;
}

inline double FindingOf(int dose, int well, int i) {
    return IsWholeFinding(i) ? 1500.0 + 10 * well + i : 0.5 + 0.1 / (1 + i) + well / 64.0 + dose / 16.0;
}
inline double ResponseOf(int dose, int well, int type) { return 1.0 + 0.3 * type + well / 54.0 + dose; }

inline CTree MakeTree(int scale) {
    CTree tree;
    for (int dose = 0; dose < kDoses * scale; ++dose) {
        CTree::CRecording& recording = tree.recordings.emplace_back();
        recording.dose = 1000U * static_cast<unsigned>(dose + 1);
        for (int id = 0; id < kWells; ++id) {
            CTree::CWell& well = recording.wells[kFirstWell + id];
            well.label = "W" + std::to_string(id);
            for (int i = 0; i < kTimes; ++i)
                well.times.push_back(TimeOf(dose, id, i));
            for (int i = 0; i < kSamples; ++i)
                well.average.push_back(SampleOf(dose, id, i));
            for (int i = 0; i < 8; ++i)
                well.findings[i] = FindingOf(dose, id, i);
            for (int type = 1; type < 4; ++type)
                well.responses[type] = well.normalized[type] = ResponseOf(dose, id, type);
        }
    }
    return tree;
}

/// Returns whether a tree was read back correctly; averages keep only six digits.
inline bool IsWhole(const CTree& tree, int scale) {
    const CTree made = MakeTree(scale);
    if (tree.recordings.size() != made.recordings.size()) return false;
    for (std::size_t r = 0; r < made.recordings.size(); ++r) {
        if (tree.recordings[r].dose != made.recordings[r].dose) return false;
        if (tree.recordings[r].wells.size() != made.recordings[r].wells.size()) return false;
        for (const auto& [id, well] : made.recordings[r].wells) {
            const CTree::CWell& read = tree.recordings[r].wells.at(id);
            if (read.label != well.label || read.times != well.times || read.responses != well.responses) return false;
            if (read.normalized != well.normalized || read.average.size() != well.average.size()) return false;
            for (int i = 0; i < 8; ++i)
                if (read.findings[i] != well.findings[i]) return false;
            for (std::size_t i = 0; i < well.average.size(); ++i) {
                const double halfOfSixthDigit = 5.000001e-6 * std::abs(well.average[i]);
                if (std::abs(read.average[i] - well.average[i]) > halfOfSixthDigit) return false;
            }
        }
    }
    return true;
}
