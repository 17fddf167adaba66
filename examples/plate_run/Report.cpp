#include "Report.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <ostream>
#include <vector>

#include "Beats.h"

namespace {

/// Returns a count with commas, such as "12,345".
std::string CountText(std::int64_t count) {
    std::string text = std::to_string(count);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

/// Returns a dose, given in picomolar, with its unit, such as "30 nM".
std::string DoseText(std::int64_t dose) {
    constexpr std::array kUnits = {"pM", "nM", "uM", "mM"};
    if (dose == 0) return "none";
    std::size_t unit = 0;
    while (dose % 1000 == 0 && unit + 1 < kUnits.size()) {
        dose /= 1000;
        ++unit;
    }
    return std::to_string(dose) + " " + kUnits[unit];
}

std::string DosesText(const std::vector<std::int64_t>& doses) {
    std::string text;
    for (const std::int64_t dose : doses)
        text += (text.empty() ? "  " : ", ") + DoseText(dose);
    return text;
}

std::int64_t BytesOf(const CAmount& amount) {
    return amount.samples * static_cast<std::int64_t>(sizeof(std::uint16_t));
}

void PrintRow(std::ostream& out, const std::string& task, std::size_t recordings, std::size_t wells,
              const CAmount& read, const std::string& doses) {
    out << std::left << std::setw(12) << task << std::right << std::setw(12) << recordings << std::setw(7) << wells
        << std::setw(10) << CountText(read.segments) << std::setw(13) << CountText(read.samples) << std::setw(14)
        << CountText(BytesOf(read)) << doses << '\n';
}

void PrintRate(std::ostream& out, const std::string& what, std::int64_t bytes, double seconds) {
    const double megabytes = static_cast<double>(bytes) / 1e6;
    out << what << CountText(std::llround(megabytes)) << " MB of samples at "
        << CountText(std::llround(megabytes / seconds)) << " MB/s\n";
}

/// Prints a number with `digits` decimals, right-aligned, or "-" if there is none.
void PrintNumber(std::ostream& out, bool isThere, double number, int digits) {
    out << std::right << std::setw(8);
    if (isThere) {
        out << std::fixed << std::setprecision(digits) << number;
    } else {
        out << '-';
    }
}

void PrintBeats(std::ostream& out, const std::vector<CResultsRecording>& recordings, const CWell& well) {
    out << std::left << std::setw(12) << well.label;
    for (const CResultsRecording& recording : recordings) {
        const double rate = BeatsPerMinute(recording.Wells.at(well.id).FPfastDetectionTimes);
        PrintNumber(out, rate > 0.0, rate, 1);
    }
    out << '\n';
}

void PrintMeans(std::ostream& out, const std::vector<CResultsRecording>& recordings, enResponseType type) {
    out << std::left << std::setw(12) << ResponseTypeToString(type);
    for (const CResultsRecording& recording : recordings) {
        const bool isThere = recording.ResultsExist(type);
        PrintNumber(out, isThere, isThere ? recording.NormalizedResponses.at(type).normMean : 0.0, 3);
    }
    out << '\n';
}

CAmount SumOf(const CReplay& replay) {
    CAmount sum;
    for (const CTaskContent& task : replay.tasks)
        sum += task.read;
    return sum;
}

}  // namespace

void PrintPlan(std::ostream& out, const CPlatePlan& plan) {
    const std::int64_t seconds = plan.SamplesPerWell() * kTick / 1'000'000;
    out << "A heart signal on a plate of " << plan.wells.size() << " wells: " << plan.recordings.size()
        << " recordings of " << seconds << " s, one sample every " << kTick << " us\n\n";
}

void PrintTasks(std::ostream& out, const CReplay& replay) {
    out << "Task          Recordings  Wells  Segments      Samples  Sample bytes  Doses\n";
    std::size_t recordings = 0;
    for (const CTaskContent& task : replay.tasks) {
        PrintRow(out, task.name, task.doses.size(), task.wells, task.read, DosesText(task.doses));
        recordings += task.doses.size();
    }
    PrintRow(out, "All", recordings, replay.tasks.front().wells, SumOf(replay), "");
    out << '\n';
}

void PrintSpeed(std::ostream& out, const CReplay& replay, double secondsWriting) {
    const std::int64_t bytes = BytesOf(SumOf(replay));
    PrintRate(out, "Written: ", bytes, secondsWriting);
    PrintRate(out, "Read:    ", bytes, replay.seconds);
    out << "Compared: every sample matches the recorded signal\n";
}

void PrintWell(std::ostream& out, const CWell& well, const CAmount& read) {
    out << "Well " << well.label << " alone: " << CountText(read.segments) << " segments, " << CountText(read.samples)
        << " samples, all matching\n";
}

void PrintSeries(std::ostream& out, const CPlatePlan& plan, const CResults& results) {
    constexpr std::size_t kEvery = 5;  // shows every fifth well, to cover the whole plate
    const std::vector<CResultsRecording>& recordings = results.GetTaskResults(enTask::Series)->Recordings;
    out << "\nBeats per minute of selected wells (- if the signal is too weak)\n"
        << std::left << std::setw(12) << "Well";
    for (const CResultsRecording& recording : recordings)
        out << std::right << std::setw(8) << DoseText(static_cast<std::int64_t>(recording.Dose));
    out << '\n';
    for (std::size_t i = 0; i < plan.wells.size(); i += kEvery)
        PrintBeats(out, recordings, plan.wells[i]);
    out << "\nMeans over all wells, relative to each well's response without the compound\n";
    for (const enResponseType type : AllResponseTypes())
        PrintMeans(out, recordings, type);
    out << '\n';
}

void PrintFile(std::ostream& out, const std::string& path) {
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path));
    out << "File: " << path << " (" << CountText(size) << " bytes)\n";
}
