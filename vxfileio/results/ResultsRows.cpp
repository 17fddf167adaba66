#include "vxfileio/results/ResultsRows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "vxfileio/base/EnumerationWords.h"

namespace vxfileio::results {

namespace {

using helpers::CCell;
using helpers::CColumn;
using helpers::kDoseTextColumn;
using enum helpers::EColumnType;

constexpr CColumn kTask{"task", Text, "", "The task, such as Series"};
constexpr CColumn kRecording{"recording", Whole, "", "The number of the recording within its task, from 0"};
constexpr CColumn kDose{"dose", Count, "pM", "The dose of the recording"};
constexpr CColumn kWell{"well", Whole, "", "The ID of the well"};
constexpr CColumn kLabel{"label", Text, "", "The label of the well, such as B7"};
constexpr CColumn kResponse{"response", Text, "", "The response, such as QT-Interval"};
constexpr CColumn kAnalysed{"analysed", Flag, "", "Whether the well counts in this recording, by the settings"};
constexpr CColumn kSeconds{"seconds", Real, "s", "The time in seconds"};
constexpr CColumn kMark{"mark", Text, "", "How the response was obtained, by the settings, such as Deselected"};

/// Returns the columns of several lists, one after the other.
template <std::size_t... Sizes>
constexpr auto Joined(const std::array<CColumn, Sizes>&... lists) {
    std::array<CColumn, (Sizes + ...)> all{};
    auto next = all.begin();
    ((next = std::copy(lists.begin(), lists.end(), next)), ...);
    return all;
}

constexpr std::array kOfRecording = {kTask, kRecording, kDose, kDoseTextColumn};
constexpr auto kOfWell = Joined(kOfRecording, std::array{kWell, kLabel});

constexpr auto kResponses =
    Joined(kOfWell, std::array{kResponse, CColumn{"value", Real, "", "The response as measured, or normalised"},
                               CColumn{"normalized", Flag, "", "Whether the value is normalised"}, kAnalysed, kMark});

constexpr auto kMeans = Joined(
    kOfRecording, std::array{kResponse, CColumn{"mean", Real, "", "The mean of the normalised response over the wells"},
                             CColumn{"sd", Real, "", "Its standard deviation"},
                             CColumn{"wells", Count, "", "The number of wells in the mean"}});

constexpr auto kBeats =
    Joined(kOfWell, std::array{CColumn{"beat", Whole, "", "The number of the beat in the well's recording, from 0"},
                               CColumn{"time", Whole, "tick", "When it was detected"}, kSeconds,
                               CColumn{"interval", Whole, "tick", "The time since the beat before; none at the first"},
                               CColumn{"interval_seconds", Real, "s", "The interval in seconds"}, kAnalysed});

constexpr auto kAverages = Joined(
    kOfWell, std::array{CColumn{"sample", Whole, "", "The number of the sample in the average, from 0"},
                        CColumn{"time", Whole, "tick", "Its time from the event of the average"}, kSeconds,
                        CColumn{"value", Real, "", "The voltage, in the unit of the analysing program"}, kAnalysed});

/// A table: what users call it, its columns, and how many at their end are of the settings. Columns in seconds are
/// there only if the ticks of a second are known.
struct CTableKind {
    std::string_view word;
    std::span<const CColumn> columns;
    std::size_t ofSettings;
};

/// In the order of `EResultsTable`.
constexpr CTableKind kKinds[] = {
    {"responses", kResponses, 2}, {"means", kMeans, 0}, {"beats", kBeats, 1}, {"averages", kAverages, 1}};

/// Returns the time from one beat to the next; missing if no number holds it.
CCell IntervalBetween(std::int64_t before, std::int64_t now) {
    const auto interval =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(before));
    if ((now >= before) != (interval >= 0)) return {};
    return interval;
}

}  // namespace

std::optional<EResultsTable> ResultsTableOf(std::string_view word) {
    const auto* const kind = std::ranges::find(kKinds, word, &CTableKind::word);
    if (kind == std::end(kKinds)) return std::nullopt;
    return static_cast<EResultsTable>(kind - std::begin(kKinds));
}

std::vector<CColumn> ColumnsOf(EResultsTable table, bool hasSettings, bool hasSeconds) {
    const CTableKind& kind = kKinds[static_cast<std::size_t>(table)];
    const auto all = kind.columns.first(kind.columns.size() - (hasSettings ? 0 : kind.ofSettings));
    std::vector<CColumn> columns(all.begin(), all.end());
    if (!hasSeconds) std::erase_if(columns, [](const CColumn& column) { return column.unit == "s"; });
    return columns;
}

CResultsRows::CResultsRows(EResultsTable table, const CRowOptions& options, CPut put)
    : m_table(table), m_options(options), m_put(std::move(put)) {}

void CResultsRows::PutAll(const CResults& results) {
    for (const auto& [key, task] : results.Tasks) {
        CRecordingPlace place{.task = m_options.textOf(task.TaskName)};
        for (const CResultsRecording& recording : task.Recordings) {
            place.dose = recording.Dose;
            for (const auto& [wellID, well] : recording.Wells) {
                if (AreOfWells()) PutWell(place, wellID, well);
            }
            for (const auto& [response, mean] : recording.NormalizedResponses) {
                if (!AreOfWells()) PutMean(place, mean);
            }
            ++place.recording;
        }
    }
}

void CResultsRows::PutWell(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well) {
    BeginWell(place, wellID, well);
    if (m_table == EResultsTable::Responses) PutResponses(place, wellID, well);
    if (m_table == EResultsTable::Beats) PutBeats(well);
    if (m_table == EResultsTable::Averages && well.AverageExist()) PutAverages(well);
}

void CResultsRows::PutMean(const CRecordingPlace& place, const CResponseMean& mean) {
    Begin(place);
    const std::string label = m_options.textOf(mean.Label);
    Put({label, mean.normMean, mean.normStdDev, std::uint64_t{mean.Samples}}, {});
}

void CResultsRows::PutResponses(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well) {
    for (const bool isNormalized : {false, true}) {
        for (const auto& [key, response] : isNormalized ? well.NormalizedResponses : well.Responses) {
            const std::string label = m_options.textOf(response.Label);
            const std::string_view mark = MarkOf(place, wellID, key);
            Put({label, response.Value, isNormalized}, {m_isAnalysed, mark});
        }
    }
}

void CResultsRows::PutBeats(const CResultsWell& well) {
    const auto& times = well.FPfastDetectionTimes;
    for (std::size_t i = 0; i < times.size(); ++i) {
        m_row = m_front;
        m_row.emplace_back(static_cast<std::int64_t>(i));
        AddTime(times[i]);
        AddTime(i == 0 ? CCell() : IntervalBetween(times[i - 1], times[i]));
        EndRow({m_isAnalysed});
    }
}

void CResultsRows::PutAverages(const CResultsWell& well) {
    for (std::uint32_t i = 0; i < well.GetAveSamples(); ++i) {
        m_row = m_front;
        m_row.emplace_back(std::int64_t{i});
        AddTime(well.GetAveTimeStamp(i));
        m_row.emplace_back(well.GetAveVoltage(i));
        EndRow({m_isAnalysed});
    }
}

/// Begins the rows of a recording, which have its cells in front.
void CResultsRows::Begin(const CRecordingPlace& place) {
    m_doseText = helpers::DoseWithUnit(place.dose);
    m_front = {place.task, place.recording, place.dose, m_doseText};
}

/// Begins the rows of a well in a recording.
void CResultsRows::BeginWell(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well) {
    Begin(place);
    const bool isFromPlate = well.WellLabel.empty() && m_options.plate != nullptr;
    m_label = m_options.textOf(isFromPlate ? m_options.plate->GetWellLabel(wellID) : well.WellLabel);
    m_front.insert(m_front.end(), {std::int64_t{wellID}, m_label});
    if (m_options.analyzer == nullptr) return;
    m_task = StringToTask(place.task);
    m_isAnalysed = m_options.analyzer->IsWellAnalyzed(m_task, static_cast<std::int32_t>(place.recording), wellID);
}

std::string_view CResultsRows::MarkOf(const CRecordingPlace& place, std::int32_t wellID,
                                      enResponseType response) const {
    if (m_options.analyzer == nullptr) return {};
    const auto recording = static_cast<std::int32_t>(place.recording);
    return base::WordOf(m_options.analyzer->GetResponseMark(m_task, recording, wellID, response));
}

void CResultsRows::Put(CCells values, CCells ofSettings) {
    m_row = m_front;
    m_row.insert(m_row.end(), values);
    EndRow(ofSettings);
}

/// Adds a time in ticks, or none, and the same in seconds.
void CResultsRows::AddTime(const CCell& ticks) {
    m_row.push_back(ticks);
    if (m_options.ticksPerSecond == 0) return;
    const auto* const time = std::get_if<std::int64_t>(&ticks);
    m_row.push_back(time == nullptr ? CCell() : CCell(static_cast<double>(*time) / m_options.ticksPerSecond));
}

void CResultsRows::EndRow(CCells ofSettings) {
    if (m_options.analyzer != nullptr) m_row.insert(m_row.end(), ofSettings);
    m_put(m_row);
}

}  // namespace vxfileio::results
