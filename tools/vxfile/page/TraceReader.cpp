#include "tools/vxfile/page/TraceReader.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

/// The steps of all traces together; this bounds the size of the page. One trace has no more than a chart of a whole
/// screen can show.
constexpr std::size_t kAllSteps = 350'000;
constexpr std::size_t kMostSteps = 3'000;
constexpr std::size_t kFewestSteps = 16;

/// The position of the segments in the header of a recording that its writer never finished.
constexpr std::int64_t kUnfinished = -1;

constexpr std::string_view kNoUnits = ". Traces without units are in AD steps. Run 'vxfile verify' on the file.";

/// Returns the recordings of a task by their numbers.
std::map<std::int32_t, std::size_t> RecordingsOf(const CRawDataFile& file, const std::string& task) {
    std::map<std::int32_t, std::size_t> recordings;
    for (const CRawDataRecordingHdr& header : file.GetRecordings()) {
        if (Readable(header.TaskName) == task)
            recordings[header.Recording] = *file.FindRecording(header.TaskName, header.Recording);
    }
    return recordings;
}

}  // namespace

CTraceReader::CTraceReader(CPlateValues& values, const CRawDataFile& file) : m_values(values) {
    for (std::size_t i = 0; i < values.wells.size(); ++i)
        m_wells[values.wells[i].id] = i;
    const std::size_t pairs = std::max<std::size_t>(1, values.wells.size() * values.recordings.size());
    m_steps = std::clamp(kAllSteps / pairs, kFewestSteps, kMostSteps);
    values.traces.assign(values.recordings.size(), std::vector<CTrace>(values.wells.size()));
    std::map<std::string, std::size_t> places;  // the number of lines of each task so far
    for (std::size_t i = 0; i < values.recordings.size(); ++i)
        FindLine(i, places[values.recordings[i].task]++, file);
}

/// Finds the recording of a line, which is the one at this place among the lines of its task.
void CTraceReader::FindLine(std::size_t line, std::size_t place, const CRawDataFile& file) {
    const CRecordingLine& wanted = m_values.recordings[line];
    const auto recordings = RecordingsOf(file, wanted.task);
    if (place >= recordings.size()) {
        m_values.notes.push_back("The raw data file has no recording of " + wanted.name + '.');
        return;
    }
    const std::size_t found = std::next(recordings.begin(), static_cast<std::ptrdiff_t>(place))->second;
    const CRawDataRecordingHdr& header = file.GetRecordings()[found];
    if (header.Dose < 0 || static_cast<std::uint64_t>(header.Dose) != wanted.dose) {
        m_values.notes.push_back("The recording at the place of " + wanted.name +
                                 " has another dose in the raw data file, so its trace isn't shown.");
    } else if (header.FPosRecordingData == kUnfinished) {
        m_values.notes.push_back("There is no trace for the recording of " + wanted.name +
                                 ", as it was never finished.");
    } else {
        m_shown[found] = {line, header.RecordingTime};
    }
}

void CTraceReader::Begin(std::size_t recording, const std::vector<CRawDataChannelInfo>& wells) {
    const auto found = m_shown.find(recording);
    m_traces = nullptr;
    m_isMissing = false;
    m_isUnlistedNoted = false;
    m_listed.clear();
    if (found == m_shown.end()) return;
    const auto [line, length] = found->second;
    m_line = line;
    m_traces = &m_values.traces[line];
    std::ranges::fill(*m_traces, CTrace(m_steps, length, {}));
    std::vector<std::int32_t> withoutUnits;
    for (const CRawDataChannelInfo& well : wells) {
        m_listed.insert(well.ID);
        const auto place = m_wells.find(well.ID);
        if (place == m_wells.end()) continue;
        (*m_traces)[place->second] = CTrace(m_steps, length, {well.UnitsPerAD, well.ADZero});
        if (std::isnan(well.UnitsPerAD)) withoutUnits.push_back(well.ID);
    }
    if (!withoutUnits.empty()) NoteUnits(withoutUnits);
}

void CTraceReader::NoteUnits(const std::vector<std::int32_t>& wells) {
    m_values.notes.push_back("UnitsPerADs or ADZeros in the header of " + Name() + " has no number for " +
                             (wells.size() == 1 ? "well " : "wells ") + ListText(wells) + std::string(kNoUnits));
}

void CTraceReader::NoteUnlisted(std::int32_t well) {
    if (std::exchange(m_isUnlistedNoted, true)) return;
    m_values.notes.push_back("The header of " + Name() +
                             " doesn't list each well that has samples; the first is well " + std::to_string(well) +
                             std::string(kNoUnits));
}

void CTraceReader::Take(const CSegmentSamples& samples) {
    if (m_traces == nullptr) return;
    const auto place = m_wells.find(samples.well);
    if (place == m_wells.end()) return;
    if (!m_listed.contains(samples.well)) NoteUnlisted(samples.well);
    (*m_traces)[place->second].Add(samples.timeFrom, samples.interval, samples.samples);
}

void CTraceReader::Miss() {
    if (m_traces == nullptr || std::exchange(m_isMissing, true)) return;
    m_values.notes.push_back("Only a part of " + Name() + " is shown, since the raw data file is damaged.");
}

}  // namespace vxfile::page
