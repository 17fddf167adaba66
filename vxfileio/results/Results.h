#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/results/ResultsTask.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

/// The results of one compound, as a tree: tasks, recordings, wells, responses. A value with deep copies.
///
/// Fill it in this order: `SetFPAverage`, `Init` for each task, then the findings. Everything is in the order of its
/// keys. The tree owns what its pointers point to; they are valid until their task is replaced or removed. Recordings
/// are counted from 0; an index outside the range, negative ones too, means a recording that doesn't exist.
class VXFILEIO_API CResults {
 public:
    std::int32_t CompoundID = 0;              ///< The compound; no file holds it.
    std::map<enTask, CResultsTask> Tasks;     ///< The results by task.
    std::uint32_t FPAverageSamples = 0;       ///< Length of the averages that `Init` makes.
    std::int64_t FPAverageTick = 0;           ///< Spacing of their samples.
    std::int64_t FPAveragePreFPfastTime = 0;  ///< The time from their beginning to their event.

    /// Returns the compound.
    std::int32_t GetCompoundID() const noexcept { return CompoundID; }
    /// Sets the averages of wells that `Init` makes from now on.
    void SetFPAverage(std::uint32_t samples, std::int64_t averageTick, std::int64_t preFPfastTime);
    /// Sets the compound, and replaces a task: one recording per dose (picomolar), with one well per ID and the label
    /// at the same index. `taskName` is the word of the task, which files use as its key.
    void Init(std::int32_t compoundID, enTask task, const std::string& taskName,
              const std::vector<std::uint64_t>& doses, const std::vector<std::int32_t>& wellIDs,
              const std::vector<std::string>& wellLabels);

    /// Returns the tasks, in ascending order.
    std::vector<enTask> GetTasks() const;
    /// Returns a task, or null.
    CResultsTask* GetTaskResults(enTask task);
    const CResultsTask* GetTaskResults(enTask task) const;  ///< The same for constant results.
    /// Returns the number of recordings of a task; 0 without the task.
    std::int32_t GetRecordingCount(enTask task) const;
    /// Returns a recording, or null.
    CResultsRecording* GetRecording(enTask task, std::int32_t index);
    const CResultsRecording* GetRecording(enTask task, std::int32_t index) const;  ///< The same for constant results.
    /// Returns the well IDs of a recording, in ascending order.
    std::vector<std::int32_t> GetWellIDs(enTask task, std::int32_t index) const;
    /// Returns a well, or null.
    CResultsWell* GetWellResults(enTask task, std::int32_t index, std::int32_t wellID);
    /// The same for constant results.
    const CResultsWell* GetWellResults(enTask task, std::int32_t index, std::int32_t wellID) const;

    /// Sets a statistic of a recording and its label. Without the recording it does nothing.
    void SetCompoundResults(enTask task, std::int32_t index, enResponseType type, double normMean, double normStdDev,
                            std::uint32_t samples);
    /// Removes a statistic of a recording, if it is there.
    void ClearCompoundResults(enTask task, std::int32_t index, enResponseType type);
    /// Removes all tasks; the other fields stay.
    void Clear();

    /// Writes the element `Results`.
    void Save(CXmlFileArchive& archive) const;
    /// Reads on to the end tag of `Results`. A task in the file replaces that task; others stay. The key of each comes
    /// from its `TaskName`.
    void Load(CXmlFileArchive& archive);
};
