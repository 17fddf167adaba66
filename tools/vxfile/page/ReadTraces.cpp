#include "tools/vxfile/page/ReadTraces.h"

#include <algorithm>
#include <map>
#include <set>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

constexpr std::int32_t kAllWells = -1;

/// The steps of all traces together; this bounds the size of the page. One trace has no more than a chart of a whole
/// screen can show.
constexpr std::size_t kAllSteps = 350'000;
constexpr std::size_t kMostSteps = 3'000;
constexpr std::size_t kFewestSteps = 16;

/// Returns the numbers of a task's recordings in the file, and their doses, in ascending order.
std::map<std::int32_t, std::int64_t> NumbersOf(const CRawDataIndex& index, const std::string& task) {
    std::map<std::int32_t, std::int64_t> numbers;
    for (std::int32_t i = 0; i < index.GetCount(); ++i) {
        const CIndexEntry& entry = *index.GetEntry(i);
        if (Readable(entry.TaskName) == task) numbers[entry.Recording] = entry.Dose;
    }
    return numbers;
}

/// Reads recordings into the traces of their wells.
class CTraceReader {
 public:
    CTraceReader(CPlateValues& values, CIRawDataReader& reader) : m_values(values), m_reader(reader) {
        for (std::size_t i = 0; i < values.wells.size(); ++i)
            m_wellAt[values.wells[i].id] = i;
        const std::size_t pairs = std::max<std::size_t>(1, values.wells.size() * values.recordings.size());
        m_steps = std::clamp(kAllSteps / pairs, kFewestSteps, kMostSteps);
        values.traces.assign(values.recordings.size(), std::vector<CTrace>(values.wells.size()));
        m_reader.SelectWellID(kAllWells);
    }

    /// Reads the recording of one line of the results.
    void Read(std::size_t line, const std::string& task, std::int32_t number) {
        const std::string what = "the recording of " + m_values.recordings[line].name;
        std::vector<CTrace>& traces = m_values.traces[line];
        MakeTraces(traces, m_reader.GetRecordingHdr(task, number));
        const std::string failure = FailureOf([&] {
            if (!m_reader.JumpToData(task, number)) {
                m_values.notes.push_back("There is no trace for " + what + ", as it was never finished.");
            } else {
                while (ReadSegment(traces)) {
                }
            }
        });
        if (!failure.empty()) m_values.notes.push_back("Only a part of " + what + " is shown. " + Readable(failure));
    }

 private:
    void MakeTraces(std::vector<CTrace>& traces, const CRawDataRecordingHdr* header) const {
        if (header == nullptr) return;
        for (const CRawDataChannelInfo& channel : header->WellChannels) {
            const auto found = m_wellAt.find(channel.ID);
            const CTrace::CScale scale = {channel.UnitsPerAD, channel.ADZero};
            if (found != m_wellAt.end()) traces[found->second] = CTrace(m_steps, header->RecordingTime, scale);
        }
    }

    bool ReadSegment(std::vector<CTrace>& traces) {
        std::int32_t well = 0;
        std::int64_t from = 0;
        std::int64_t to = 0;
        std::uint32_t size = 0;
        std::uint16_t* samples = nullptr;
        if (!m_reader.ReadSegment(well, from, to, size, samples)) return false;
        const auto found = m_wellAt.find(well);
        if (found == m_wellAt.end() || size == 0 || to < from) return true;
        const std::uint64_t span = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
        const std::uint64_t tick = size == 1 ? 1 : span / (size - 1);
        if (tick > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return true;
        traces[found->second].Add(from, static_cast<std::int64_t>(tick), {samples, size});
        return true;
    }

    CPlateValues& m_values;
    CIRawDataReader& m_reader;
    std::map<std::int32_t, std::size_t> m_wellAt;
    std::size_t m_steps = 0;
};

}  // namespace

void ReadTraces(CPlateValues& values, CIRawDataReader& reader) {
    CTraceReader traces(values, reader);
    std::map<std::string, std::size_t> lines;  // the number of lines of each task so far
    for (std::size_t i = 0; i < values.recordings.size(); ++i) {
        const CRecordingLine& line = values.recordings[i];
        const auto numbers = NumbersOf(*reader.GetIndex(), line.task);
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
