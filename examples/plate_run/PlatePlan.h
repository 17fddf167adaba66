#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// What is recorded: which wells, which tasks at which doses, and when. A real application takes it from its settings.
///
/// Everything runs by one clock, the number of a sample since the run began; a time is that number times `kTick`. The
/// library doesn't care which unit of time an instrument has. This one counts microseconds.

/// The sample interval. 360 samples a second would be 2777.8 us: the unit allows whole numbers only.
inline constexpr std::int64_t kTick = 2778;

/// What stands for zero, and how many millivolts one AD step is. A reader needs both to turn samples into a voltage.
inline constexpr std::int32_t kADZero = 32768;
inline constexpr double kMillivoltPerAD = 0.0003125;

/// How the plate is laid out.
inline constexpr enPlateLayout kLayout = enPlateLayout::L8x12;

/// One well, and what makes its signal differ from that of its neighbours.
struct CWell {
    std::int32_t id;            ///< How the well is known in every file. This instrument takes its channel for it.
    std::string label;          ///< How people know it, such as "B3".
    std::int32_t row;           ///< Where it is on the plate, from 0.
    std::int32_t column;        ///< Also from 0.
    std::int64_t delay;         ///< Samples by which its signal is late.
    std::int64_t gainPermille;  ///< Strength of its signal.
    std::int64_t noise;         ///< Most AD steps by which a sample is off.
};

/// One recording: all wells for a while at one dose.
struct CRecordingPlan {
    enTask task;
    std::int32_t number;       ///< Number within the task, from 1.
    std::int64_t dose;         ///< In picomolar.
    std::int64_t firstSample;  ///< By the clock of the run.
};

/// The plan of the whole run.
struct CPlatePlan {
    std::string guid;      ///< The run's own identifier, which all its files have.
    std::uint64_t date;    ///< When it is recorded, as a file time: units of 100 ns since 1601-01-01, UTC.
    std::string dateText;  ///< The same for people.
    std::string plateID;
    std::int32_t compoundID;
    std::string compoundName;
    std::vector<CWell> wells;
    std::vector<CRecordingPlan> recordings;
    std::int64_t samplesPerSegment;
    std::int64_t segmentsPerWell;  ///< In each recording.

    /// The clock at the beginning of a segment of a recording.
    std::int64_t FirstSample(const CRecordingPlan& recording, std::int64_t segment) const {
        return recording.firstSample + segment * samplesPerSegment;
    }

    /// The samples of one well in one recording.
    std::int64_t SamplesPerWell() const { return segmentsPerWell * samplesPerSegment; }

    /// The segments of the run.
    std::int64_t Segments() const {
        return static_cast<std::int64_t>(recordings.size() * wells.size()) * segmentsPerWell;
    }
};

/// Returns the plan of a run whose recordings last so many minutes each.
CPlatePlan MakePlatePlan(std::int64_t minutes);

/// Returns the doses of one task in the order of its recordings.
std::vector<std::int64_t> DosesOf(const CPlatePlan& plan, enTask task);

/// Returns the IDs of all wells.
std::vector<std::int32_t> WellIDsOf(const CPlatePlan& plan);
