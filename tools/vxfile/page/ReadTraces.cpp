#include "tools/vxfile/page/ReadTraces.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

/// The steps of all traces together; this bounds the size of the page. One trace has no more than a chart of a whole
/// screen can show.
constexpr std::size_t kAllSteps = 350'000;
constexpr std::size_t kMostSteps = 3'000;
constexpr std::size_t kFewestSteps = 16;

/// The samples that are read at once, unless one segment has more: half a MiB, which stays in the processor's cache.
constexpr std::uint64_t kPiece = std::uint64_t{256} << 10;

/// The position of the segments in the header of a recording that its writer never finished.
constexpr std::int64_t kUnfinished = -1;

/// Returns the numbers of a task's recordings in the file, and their doses, in ascending order.
std::map<std::int32_t, std::int64_t> NumbersOf(const CRawDataFile& file, const std::string& task) {
    std::map<std::int32_t, std::int64_t> numbers;
    for (const CRawDataRecordingHdr& recording : file.GetRecordings()) {
        if (Readable(recording.TaskName) == task) numbers[recording.Recording] = recording.Dose;
    }
    return numbers;
}

/// Reads recordings into the traces of their wells.
class CTraceReader {
 public:
    CTraceReader(CPlateValues& values, const CRawDataFile& file) : m_values(values), m_file(file) {
        for (std::size_t i = 0; i < values.wells.size(); ++i)
            m_wellAt[values.wells[i].id] = i;
        const std::size_t pairs = std::max<std::size_t>(1, values.wells.size() * values.recordings.size());
        m_steps = std::clamp(kAllSteps / pairs, kFewestSteps, kMostSteps);
        values.traces.assign(values.recordings.size(), std::vector<CTrace>(values.wells.size()));
    }

    /// Reads the recording of one line of the results.
    void Read(std::size_t line, const std::string& task, std::int32_t number) {
        const std::string what = "the recording of " + m_values.recordings[line].name;
        const auto recording = m_file.FindRecording(task, number);
        if (!recording || m_file.GetRecordings()[*recording].FPosRecordingData == kUnfinished) {
            m_values.notes.push_back("There is no trace for " + what + ", as it was never finished.");
            return;
        }
        std::vector<CTrace>& traces = m_values.traces[line];
        const std::string failure = FailureOf([&] {
            const CRecordingIndex index = m_file.ReadIndex(*recording, {.UpToDamage = true});
            MakeTraces(traces, index, what);
            ReadSegments(index, traces);
        });
        if (!failure.empty()) m_values.notes.push_back("Only a part of " + what + " is shown. " + Readable(failure));
    }

 private:
    void MakeTraces(std::vector<CTrace>& traces, const CRecordingIndex& index, const std::string& what) {
        std::vector<std::int32_t> withoutUnits;
        for (const CRawDataChannelInfo& channel : index.GetWells()) {
            const auto found = m_wellAt.find(channel.ID);
            if (found == m_wellAt.end()) continue;
            const CTrace::CScale scale = {channel.UnitsPerAD, channel.ADZero};
            traces[found->second] = CTrace(m_steps, index.GetRecordingHdr().RecordingTime, scale);
            if (std::isnan(channel.UnitsPerAD)) withoutUnits.push_back(channel.ID);
        }
        if (withoutUnits.empty()) return;
        m_values.notes.push_back("UnitsPerADs or ADZeros in the header of " + what + " has no number for " +
                                 (withoutUnits.size() == 1 ? "well " : "wells ") + ListText(withoutUnits) +
                                 ". Traces without units are in AD steps. Run 'vxfile verify' on the file.");
    }

    void ReadSegments(const CRecordingIndex& index, std::vector<CTrace>& traces) {
        std::size_t first = 0;
        while (first < index.GetSegmentCount()) {
            std::size_t end = first;
            std::uint64_t samples = 0;
            do {
                samples += index.GetSegment(end++).Samples;
            } while (end < index.GetSegmentCount() && samples + index.GetSegment(end).Samples <= kPiece);
            Add(index.Select({.FirstSegment = first, .Segments = end - first}), traces);
            first = end;
        }
        if (!index.GetDamage().empty()) throw CExcVXReader(index.GetDamage());
    }

    void Add(const CSampleSelection& piece, std::vector<CTrace>& traces) {
        m_samples.resize(std::max(m_samples.size(), piece.GetSamples()));
        std::vector<std::span<std::uint16_t>> buffers;
        auto* begin = m_samples.data();
        for (const CWellSamples& well : piece.GetWells())
            buffers.emplace_back(std::exchange(begin, begin + well.Samples), well.Samples);
        piece.Read(buffers);
        for (std::size_t i = 0; i < buffers.size(); ++i) {
            const CWellSamples& well = piece.GetWells()[i];
            const auto found = m_wellAt.find(well.WellID);
            if (found == m_wellAt.end()) continue;
            for (const CSampleRun& run : well.Runs)
                traces[found->second].Add(run.TimeFrom, run.Interval, buffers[i].subspan(run.Offset, run.Samples));
        }
    }

    CPlateValues& m_values;
    const CRawDataFile& m_file;
    std::map<std::int32_t, std::size_t> m_wellAt;
    std::size_t m_steps = 0;
    std::vector<std::uint16_t> m_samples;  ///< Of one piece.
};

}  // namespace

void ReadTraces(CPlateValues& values, const CRawDataFile& file) {
    CTraceReader traces(values, file);
    std::map<std::string, std::size_t> lines;  // the number of lines of each task so far
    for (std::size_t i = 0; i < values.recordings.size(); ++i) {
        const CRecordingLine& line = values.recordings[i];
        const auto numbers = NumbersOf(file, line.task);
        const std::size_t place = lines[line.task]++;
        if (place >= numbers.size()) {
            values.notes.push_back("The raw data file has no recording of " + line.name + '.');
            continue;
        }
        const auto& [number, dose] = *std::next(numbers.begin(), static_cast<std::ptrdiff_t>(place));
        if (dose < 0 || static_cast<std::uint64_t>(dose) != line.dose) {
            values.notes.push_back("The recording at the place of " + line.name +
                                   " has another dose in the raw data file, so its trace isn't shown.");
            continue;
        }
        traces.Read(i, line.task, number);
    }
}

}  // namespace vxfile::page
