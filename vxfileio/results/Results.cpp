#include "vxfileio/results/Results.h"

#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::results {

namespace {

/// Finds a value by its key; null if there is none.
template <class Map>
auto* FindIn(Map& map, const typename Map::key_type& key) {
    const auto place = map.find(key);
    return place == map.end() ? nullptr : &place->second;
}

/// The two steps of every way down the tree, for constant trees and others.
template <class Tree>
auto* RecordingOf(Tree& results, enTask task, std::int32_t index) {
    auto* const found = FindIn(results.Tasks, task);
    // Below 0, an index is larger than any size.
    const bool there = found != nullptr && static_cast<std::size_t>(index) < found->Recordings.size();
    return there ? &found->Recordings[static_cast<std::size_t>(index)] : nullptr;
}

template <class Tree>
auto* WellOf(Tree& results, enTask task, std::int32_t index, std::int32_t wellID) {
    auto* const recording = RecordingOf(results, task, index);
    return recording == nullptr ? nullptr : FindIn(recording->Wells, wellID);
}

template <class Map>
std::vector<typename Map::key_type> KeysOf(const Map& map) {
    std::vector<typename Map::key_type> keys;
    keys.reserve(map.size());
    for (const auto& [key, value] : map)
        keys.push_back(key);
    return keys;
}

}  // namespace

}  // namespace vxfileio::results

void CResults::SetFPAverage(std::uint32_t samples, std::int64_t averageTick, std::int64_t preFPfastTime) {
    FPAverageSamples = samples;
    FPAverageTick = averageTick;
    FPAveragePreFPfastTime = preFPfastTime;
}

void CResults::Init(std::int32_t compoundID, enTask task, const std::string& taskName,
                    const std::vector<std::uint64_t>& doses, const std::vector<std::int32_t>& wellIDs,
                    const std::vector<std::string>& wellLabels) {
    CompoundID = compoundID;
    CResultsTask results(doses, wellIDs, wellLabels, FPAverageSamples, FPAverageTick, FPAveragePreFPfastTime);
    results.TaskName = taskName;
    Tasks[task] = std::move(results);
}

std::vector<enTask> CResults::GetTasks() const { return vxfileio::results::KeysOf(Tasks); }

CResultsTask* CResults::GetTaskResults(enTask task) { return vxfileio::results::FindIn(Tasks, task); }
const CResultsTask* CResults::GetTaskResults(enTask task) const { return vxfileio::results::FindIn(Tasks, task); }

std::int32_t CResults::GetRecordingCount(enTask task) const {
    const CResultsTask* const found = GetTaskResults(task);
    return found == nullptr ? 0 : static_cast<std::int32_t>(found->Recordings.size());
}

CResultsRecording* CResults::GetRecording(enTask task, std::int32_t index) {
    return vxfileio::results::RecordingOf(*this, task, index);
}
const CResultsRecording* CResults::GetRecording(enTask task, std::int32_t index) const {
    return vxfileio::results::RecordingOf(*this, task, index);
}

std::vector<std::int32_t> CResults::GetWellIDs(enTask task, std::int32_t index) const {
    const CResultsRecording* const recording = GetRecording(task, index);
    return recording == nullptr ? std::vector<std::int32_t>() : vxfileio::results::KeysOf(recording->Wells);
}

CResultsWell* CResults::GetWellResults(enTask task, std::int32_t index, std::int32_t wellID) {
    return vxfileio::results::WellOf(*this, task, index, wellID);
}
const CResultsWell* CResults::GetWellResults(enTask task, std::int32_t index, std::int32_t wellID) const {
    return vxfileio::results::WellOf(*this, task, index, wellID);
}

void CResults::SetCompoundResults(enTask task, std::int32_t index, enResponseType type, double normMean,
                                  double normStdDev, std::uint32_t samples) {
    CResultsRecording* const recording = GetRecording(task, index);
    if (recording == nullptr) return;
    recording->NormalizedResponses[type] = CResponseMean{ResponseTypeToString(type), normMean, normStdDev, samples};
}

void CResults::ClearCompoundResults(enTask task, std::int32_t index, enResponseType type) {
    CResultsRecording* const recording = GetRecording(task, index);
    if (recording != nullptr) recording->NormalizedResponses.erase(type);
}

void CResults::Clear() { Tasks.clear(); }

void CResults::Save(CXmlFileArchive& archive) const {
    archive.OpenChild(vxfileio::results::kResultsElement);
    for (const auto& [task, results] : Tasks)
        results.Save(archive);
    archive.CloseElement();
}

void CResults::Load(CXmlFileArchive& archive) {
    vxfileio::xmlarchive::ForEachEventOfSection(archive, vxfileio::results::kResultsElement, [&] {
        if (vxfileio::xmlarchive::IsStartOf(archive, vxfileio::results::kResultsElement)) archive.CountEntries();
        if (!vxfileio::xmlarchive::IsStartOf(archive, vxfileio::results::kTaskElement.tag)) return;
        CResultsTask results;
        vxfileio::xmlarchive::LoadChildren(archive, [&] { results.Load(archive); });
        const enTask task = StringToTask(results.TaskName);
        Tasks[task] = std::move(results);
    });
}
