#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vxfile/report/Table.h"
#include "vxfileio/frame/VXFileIO.h"

/// @file
/// The values of a results file as tables, with one row per value.

namespace vxfile {

/// What a table holds.
enum class EResultsTable { Responses, Means, Beats, Averages };

/// Returns the table that a user means by a word such as "beats"; nothing if there is none.
std::optional<EResultsTable> ResultsTableOf(std::string_view word);

/// Returns the columns of a table. With `hasSettings` they include what only settings contain, with `hasSeconds` times
/// in seconds.
std::vector<CColumn> ColumnsOf(EResultsTable table, bool hasSettings, bool hasSeconds);

/// What else rows are made of.
struct CTableOptions {
    const CISettingsReader* settings = nullptr;  ///< May be null.
    double ticksPerSecond = 0;                   ///< Adds times in seconds; 0 for none.
};

/// Passes the rows of a results file to `put`, in the order of the document. Texts are valid until it returns.
/// Returns what was wrong with the document, as `WalkResults` does.
[[nodiscard]] std::string ForEachRow(EResultsTable table, const std::string& path, const CTableOptions& options,
                                     const std::function<void(std::span<const CCell>)>& put);

}  // namespace vxfile
