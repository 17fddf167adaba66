#include "PlatePlan.h"

namespace {

constexpr std::int64_t kSecond = 360;  // all on the clock of the run, in samples
constexpr std::int64_t kSegment = 10 * kSecond;
constexpr std::int64_t kPipetting = 30 * kSecond;

constexpr std::int32_t kRows = 8;
constexpr std::int32_t kWells = 3 * kRows;

/// Two wells failed: one has no signal, and the electrode of the other is so noisy that its responses are excluded.
constexpr std::int32_t kSilentWell = 10;
constexpr std::int32_t kNoisyWell = 20;

/// Returns a well without ID, label and position.
CWell MakeWell(std::int32_t n) {
    const std::int64_t place = n;
    CWell well{};
    well.delay = 37 * place;
    well.gainPermille = n == kSilentWell ? 0 : 700 + 211 * place % 600;
    well.dosePermille = 600 + 353 * place % 900;
    well.noise = n == kNoisyWell ? 1200 : 30 + 101 * place % 240;
    well.isDeselected = n == kNoisyWell;
    return well;
}

/// Returns the wells in the first three columns of the plate. The library knows channel and label of each well.
std::vector<CWell> MakeWells() {
    CPropRecordPlate plate;
    plate.BuildPlateMap(kLayout);
    std::vector<CWell> wells;
    for (std::int32_t n = 0; n < kWells; ++n) {
        const std::int32_t row = n % kRows;
        const std::int32_t column = n / kRows;
        const auto position = [&](const auto& table) {
            return table.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column));
        };
        CWell& well = wells.emplace_back(MakeWell(n));
        well.id = position(plate.Map.ChIDs);
        well.label = position(plate.Map.Labels);
        well.row = row;
        well.column = column;
    }
    return wells;
}

struct CTaskDoses {
    enTask task;
    std::vector<std::int64_t> doses;  // in picomolar
};

/// A run begins and ends with a check of the wells without a compound. In between, a known compound verifies that the
/// wells respond as expected, followed by the actual experiment: one compound at increasing doses, after a control
/// without it.
std::vector<CTaskDoses> MakeTasks() {
    constexpr std::int64_t kNanomolar = 1'000;
    constexpr std::int64_t kMicromolar = 1'000'000;
    return {
        {enTask::PreQC, {0}},
        {enTask::CompoundTest, {10 * kNanomolar, 100 * kNanomolar, 1 * kMicromolar}},
        {enTask::Series,
         {0, 3 * kNanomolar, 10 * kNanomolar, 30 * kNanomolar, 100 * kNanomolar, 300 * kNanomolar, 1 * kMicromolar,
          3 * kMicromolar}},
        {enTask::PostQC, {0}},
    };
}

}  // namespace

CPlatePlan MakePlatePlan(std::int64_t minutes) {
    CPlatePlan plan{
        .guid = "2f1a7c34-0001-4d5e-9a60-706c61746531",  // this and the date are constant, so that the files of two
        .date = 133'512'480'000'000'000,                 // runs can be compared
        .dateText = "2024-02-01 08:00:00",
        .plateID = "P1",
        .compoundID = 1,
        .compoundName = "Example compound",
        .wells = MakeWells(),
        .recordings = {},
        .samplesPerSegment = kSegment,
        .segmentsPerWell = minutes * 60 * kSecond / kSegment,
    };
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

std::vector<std::int32_t> WellIDsOf(const CPlatePlan& plan) {
    std::vector<std::int32_t> ids;
    for (const CWell& well : plan.wells)
        ids.push_back(well.id);
    return ids;
}
