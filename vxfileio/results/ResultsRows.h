#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vxfileio/helpers/PrintableText.h"
#include "vxfileio/helpers/TableColumn.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropRecordPlate.h"

/// @file
/// The values of results as tables, with one row per value: for the program, and for other languages.

namespace vxfileio::results {

/// What a table holds.
enum class EResultsTable { Responses, Means, Beats, Averages };

/// Returns the table that a user means by a word such as "beats"; nothing if there is none.
std::optional<EResultsTable> ResultsTableOf(std::string_view word);

/// Returns the columns of a table. With `hasSettings` they include what only settings contain, with `hasSeconds` times
/// in seconds.
std::vector<helpers::CColumn> ColumnsOf(EResultsTable table, bool hasSettings, bool hasSeconds);

/// What else rows are made of. Plate and analyzer are those of the same settings, or null: the plate has labels, and
/// the analyzer marks.
struct CRowOptions {
    const CPropRecordPlate* plate = nullptr;
    const CPropAnalyzer* analyzer = nullptr;
    double ticksPerSecond = 0;  ///< Adds times in seconds; 0 for none.
    /// Converts the bytes of task names and labels.
    std::string (*textOf)(std::string_view) = helpers::Utf8;
};

/// A recording of results.
struct CRecordingPlace {
    std::string task = {};       ///< As converted by `CRowOptions::textOf`.
    std::int64_t recording = 0;  ///< Its number within its task, from 0.
    std::uint64_t dose = 0;      ///< In picomolar.
};

/// Turns wells and means into the rows of one table.
class CResultsRows {
 public:
    /// Receives the cells of a row. Texts are valid until it returns.
    using CPut = std::function<void(std::span<const helpers::CCell>)>;

    CResultsRows(EResultsTable table, const CRowOptions& options, CPut put);

    /// Returns whether the rows come from wells, otherwise from means.
    bool AreOfWells() const noexcept { return m_table != EResultsTable::Means; }

    void PutWell(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well);
    void PutMean(const CRecordingPlace& place, const CResponseMean& mean);
    /// Puts the rows of all tasks, recordings and wells.
    void PutAll(const CResults& results);

 private:
    using CCells = std::initializer_list<helpers::CCell>;

    void PutResponses(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well);
    void PutBeats(const CResultsWell& well);
    void PutAverages(const CResultsWell& well);
    void Begin(const CRecordingPlace& place);
    void BeginWell(const CRecordingPlace& place, std::int32_t wellID, const CResultsWell& well);
    std::string_view MarkOf(const CRecordingPlace& place, std::int32_t wellID, enResponseType response) const;
    void Put(CCells values, CCells ofSettings);
    void AddTime(const helpers::CCell& ticks);
    void EndRow(CCells ofSettings);

    EResultsTable m_table;
    CRowOptions m_options;
    CPut m_put;
    std::string m_doseText;
    std::string m_label;
    enTask m_task = enTask::Nil;
    bool m_isAnalysed = false;
    std::vector<helpers::CCell> m_front;
    std::vector<helpers::CCell> m_row;
};

}  // namespace vxfileio::results
