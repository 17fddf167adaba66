#include "PlatePlan.h"

namespace {

constexpr std::int64_t kSecond = 360;  // all by the clock of the run, in samples
constexpr std::int64_t kSegment = 10 * kSecond;
constexpr std::int64_t kPipetting = 30 * kSecond;

/// How wells of an 8x12 plate are wired: two amplifiers, one for the upper half and one, upside down, for the lower.
std::int32_t WellID(std::int32_t row, std::int32_t column) {
    return row < 4 ? 64 + 4 * column + row : 4 * column + 7 - row;
}

std::string WellLabel(std::int32_t row, std::int32_t column) {
    return std::string(1, static_cast<char>('A' + row)) + std::to_string(column + 1);
}

/// The first three columns of the plate: 24 wells.
std::vector<CWell> MakeWells() {
    std::vector<CWell> wells;
    for (std::int32_t column = 0; column < 3; ++column) {
        for (std::int32_t row = 0; row < 8; ++row) {
            const std::int64_t n = 8 * column + row;
            wells.push_back({WellID(row, column), WellLabel(row, column), 37 * n, 700 + 25 * n, 4 + 3 * row});
        }
    }
    return wells;
}

struct CTaskDoses {
    enTask task;
    std::vector<std::int64_t> doses;  // in picomolar
};

/// A run begins and ends with a check of the wells without a compound. In between, a known compound shows that they
/// respond as they should, and then comes what the run is about: one compound at rising doses.
std::vector<CTaskDoses> MakeTasks() {
    constexpr std::int64_t kNanomolar = 1'000;
    constexpr std::int64_t kMicromolar = 1'000'000;
    return {
        {enTask::PreQC, {0}},
        {enTask::CompoundTest, {10 * kNanomolar, 100 * kNanomolar, 1 * kMicromolar}},
        {enTask::Series,
         {1 * kNanomolar, 3 * kNanomolar, 10 * kNanomolar, 30 * kNanomolar, 100 * kNanomolar, 300 * kNanomolar,
          1 * kMicromolar, 3 * kMicromolar}},
        {enTask::PostQC, {0}},
    };
}

}  // namespace

CPlatePlan MakePlatePlan(std::int64_t minutes) {
    CPlatePlan plan{"P1", 1, "Example compound", MakeWells(), {}, kSegment, minutes * 60 * kSecond / kSegment};
    std::int64_t clock = 0;
    for (const CTaskDoses& task : MakeTasks()) {
        std::int32_t number = 0;
        for (const std::int64_t dose : task.doses) {
            plan.recordings.push_back({task.task, ++number, dose, clock});
            clock += plan.SamplesPerWell() + kPipetting;
        }
    }
    return plan;
}

std::vector<std::int64_t> DosesOf(const CPlatePlan& plan, enTask task) {
    std::vector<std::int64_t> doses;
    for (const CRecordingPlan& recording : plan.recordings) {
        if (recording.task == task) doses.push_back(recording.dose);
    }
    return doses;
}
