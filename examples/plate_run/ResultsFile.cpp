#include "ResultsFile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>

#include "Difference.h"
#include "XmlHeaderCheck.h"

static bool operator==(const CResponse& a, const CResponse& b) {
    return std::tie(a.Label, a.Value) == std::tie(b.Label, b.Value);
}

static bool operator==(const CResponseMean& a, const CResponseMean& b) {
    const auto all = [](const CResponseMean& m) { return std::tie(m.Label, m.normMean, m.normStdDev, m.Samples); };
    return all(a) == all(b);
}

namespace {

/// Returns what the file stores of a well: without beats only its label and dose.
CResultsWell Kept(const CResultsWell& well) {
    if (!well.FPfastDetectionTimes.empty()) return well;
    CResultsWell kept;
    kept.WellLabel = well.WellLabel;
    kept.Dose = well.Dose;
    return kept;
}

/// Returns whether a sample of an average reads back as set. The file stores six significant digits, so the sample may
/// differ by half a unit of the sixth digit.
bool IsSameSample(double read, double set) {
    constexpr double kHalfOfSixthDigit = 5.000001e-6;  // relative; the worst case is a number that begins with 1
    return std::abs(read - set) <= kHalfOfSixthDigit * std::abs(set);
}

/// Compares all other numbers exactly.
bool IsSameWell(const CResultsWell& read, const CResultsWell& set) {
    const auto allButAverage = [](const CResultsWell& w) {
        return std::tie(w.WellLabel, w.Dose, w.AveragePreFPfastTime, w.FPfastDetectionTimes, w.AverageCount,
                        w.AverageTick, w.FPfastDetected, w.FPfastMaxAmp, w.FPfastMaxAmpTimeStamp, w.FPfastMinAmp,
                        w.FPfastMinAmpTimeStamp, w.FPfastSlopeX0, w.FPfastSlopeY0, w.FPfastSlopeX1, w.FPfastSlopeY1,
                        w.FPmaxType, w.Responses, w.NormalizedResponses);
    };
    return allButAverage(read) == allButAverage(set) && std::ranges::equal(read.Average, set.Average, IsSameSample);
}

void CheckRecording(const CResultsRecording& read, const CResultsRecording& set, const std::string& name) {
    Expect(read.Dose == set.Dose, "The dose of " + name);
    Expect(read.NormalizedResponses == set.NormalizedResponses, "The list of means of " + name);
    Expect(read.Wells.size() == set.Wells.size(), "The number of wells of " + name);
    for (const auto& [wellID, well] : set.Wells) {
        const auto found = read.Wells.find(wellID);
        Expect(found != read.Wells.end() && IsSameWell(found->second, Kept(well)),
               "Well " + well.WellLabel + " of " + name);
    }
}

void CheckTask(const CResultsTask& read, const CResultsTask& set) {
    Expect(read.TaskName == set.TaskName, "The name of task " + set.TaskName);
    Expect(read.Recordings.size() == set.Recordings.size(), "The number of recordings of " + set.TaskName);
    for (std::size_t i = 0; i < set.Recordings.size(); ++i)
        CheckRecording(read.Recordings[i], set.Recordings[i], set.TaskName + " " + std::to_string(i) + " in results");
}

}  // namespace

void WriteResults(CIResultsWriter& writer, const CXmlFileHeader& header, const CResults& results,
                  const std::string& path) {
    writer.SetXmlFileHeader(header);
    writer.WriteFile(path, results);
}

void CheckResults(CIResultsReader& reader, const CXmlFileHeader& header, const CResults& results,
                  const std::string& path) {
    reader.ReadFile(path);
    CheckXmlHeader(*reader.GetXmlFileHeader(), header, "VXResults");
    const CResults& read = *reader.GetResults();  // without a compound ID: the file only has the name, in its header
    Expect(read.GetTasks() == results.GetTasks(), "The list of tasks in results");
    for (const enTask task : results.GetTasks())
        CheckTask(*read.GetTaskResults(task), *results.GetTaskResults(task));
}
