#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// What is recorded: which wells, which tasks at which doses, and when. A real application reads this from its
/// settings.
///
/// There is one clock: the number of samples since the start of the run. A time is that number times `kTick`. The
/// library works with any unit of time. This instrument counts microseconds.

/// The sample interval. Exactly 360 samples per second would be 2777.8 us, but times are whole numbers.
inline constexpr std::int64_t kTick = 2778;

/// The sample value for zero, and the number of millivolts per AD step. A reader needs both to convert samples to a
/// voltage.
inline constexpr std::int32_t kADZero = 32768;
inline constexpr double kMillivoltPerAD = 0.0003125;

/// The layout of the plate.
inline constexpr enPlateLayout kLayout = enPlateLayout::L8x12;

/// One well, and how its signal differs from that of its neighbours.
struct CWell {
    std::int32_t id;            ///< Identifies the well in every file. This instrument uses the channel number.
    std::string label;          ///< Readable name, such as "B3".
    std::int32_t row;           ///< Row on the plate, from 0.
    std::int32_t column;        ///< Column on the plate, from 0.
    std::int64_t delay;         ///< Delay of the signal, in samples.
    std::int64_t gainPermille;  ///< Strength of the signal; 0 if no cell grows on the electrode.
    std::int64_t dosePermille;  ///< How much of a dose has an effect: some wells are more sensitive than others.
    std::int64_t noise;         ///< Maximum noise, in AD steps.
    bool isDeselected;          ///< Whether the scientist has excluded its responses.
};

/// One recording: all wells for a certain time at one dose.
struct CRecordingPlan {
    enTask task;
    std::int32_t number;       ///< Number within the task, from 1.
    std::int64_t dose;         ///< In picomolar.
    std::int64_t firstSample;  ///< On the clock of the run.
};

/// The plan of the whole run.
struct CPlatePlan {
    std::string guid;      ///< Unique identifier of the run, stored in all its files.
    std::uint64_t date;    ///< Date of the run as a file time: units of 100 ns since 1601-01-01, UTC.
    std::string dateText;  ///< The same date as readable text.
    std::string plateID;
    std::int32_t compoundID;
    std::string compoundName;
    std::vector<CWell> wells;
    std::vector<CRecordingPlan> recordings;
    std::int64_t samplesPerSegment;
    std::int64_t segmentsPerWell;  ///< In each recording.

    /// Returns the clock at the beginning of a segment of a recording.
    std::int64_t FirstSample(const CRecordingPlan& recording, std::int64_t segment) const {
        return recording.firstSample + segment * samplesPerSegment;
    }

    /// Returns the number of samples of one well in one recording.
    std::int64_t SamplesPerWell() const { return segmentsPerWell * samplesPerSegment; }

    /// Returns the number of segments in the run.
    std::int64_t Segments() const {
        return static_cast<std::int64_t>(recordings.size() * wells.size()) * segmentsPerWell;
    }
};

/// Returns the plan of a run in which each recording lasts `minutes` minutes.
CPlatePlan MakePlatePlan(std::int64_t minutes);

/// Returns the doses of one task, in the order of its recordings.
std::vector<std::int64_t> DosesOf(const CPlatePlan& plan, enTask task);

/// Returns the IDs of all wells.
std::vector<std::int32_t> WellIDsOf(const CPlatePlan& plan);
