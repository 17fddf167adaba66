#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/vxfile/page/PlateValues.h"
#include "verify/raw/SampleReceiver.h"

namespace vxfile::page {

/// Reduces the samples of a raw data file to the traces of a page. A line of the results is the recording of the same
/// task that is at the same place if those of the task are sorted by number. Wells have the same IDs in both files.
class CTraceReader : public CSampleReceiver {
 public:
    /// Makes `values.traces`, without samples. Notes lines that the file has no finished recording for. Keeps a
    /// reference to the values.
    CTraceReader(CPlateValues& values, const CRawDataFile& file);

    void Begin(std::size_t recording, const std::vector<CRawDataChannelInfo>& wells) override;
    void Take(const CSegmentSamples& samples) override;
    void Miss() override;

 private:
    /// A recording that the page shows.
    struct CShown {
        std::size_t line = 0;
        std::int64_t length = 0;  ///< In ticks.
    };

    void FindLine(std::size_t line, std::size_t place, const CRawDataFile& file);
    void NoteUnits(const std::vector<std::int32_t>& wells);
    void NoteUnlisted(std::int32_t well);
    std::string Name() const { return "the recording of " + m_values.recordings[m_line].name; }

    CPlateValues& m_values;
    std::size_t m_steps = 0;                      ///< The most steps of a trace.
    std::map<std::int32_t, std::size_t> m_wells;  ///< The place of each well in the values, by its ID.
    std::map<std::size_t, CShown> m_shown;        ///< By the number of the recording in the file.
    std::size_t m_line = 0;                       ///< Of the current recording.
    std::vector<CTrace>* m_traces = nullptr;      ///< Those of this line; null if the page doesn't show the recording.
    std::set<std::int32_t> m_listed;              ///< The wells in the header of the current recording.
    bool m_isMissing = false;                     ///< Whether a note says that samples of the recording are missing.
    bool m_isUnlistedNoted = false;               ///< Whether a note names a well that the header doesn't list.
};

}  // namespace vxfile::page
