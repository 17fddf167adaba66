#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/vxfile/report/Table.h"
#include "vxfileio/frame/VXFileIO.h"

/// @file
/// The values of a results file as tables, with one row per value.

namespace vxfile {

/// What a table holds.
enum class EResultsTable { Responses, Means, Beats, Averages };

/// Returns the table that a user means by a word such as "beats"; nothing if there is none.
std::optional<EResultsTable> ResultsTableOf(std::string_view word);

/// Returns the columns of a table. With `hasSettings` they include what only settings contain.
std::span<const CColumn> ColumnsOf(EResultsTable table, bool hasSettings);

/// Passes the rows of a results file to `put`, in the order of the document. Texts are valid until it returns.
/// `settings` may be null. Returns what was wrong with the document, as `WalkResults` does.
[[nodiscard]] std::string ForEachRow(EResultsTable table, const std::string& path, const CISettingsReader* settings,
                                     const std::function<void(std::span<const CCell>)>& put);

}  // namespace vxfile
