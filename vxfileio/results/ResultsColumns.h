#pragma once

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "vxfileio/results/ResultsRows.h"

namespace vxfileio::results {

/// In place of a whole number that is missing.
inline constexpr std::int64_t kMissingWhole = std::numeric_limits<std::int64_t>::min();

/// A column of a table with its values, in the order of the rows.
struct CResultsColumn {
    helpers::CColumn column;
    /// By the type of the column. Equal texts are the same bytes in memory; a flag is 0 or 1.
    std::variant<std::vector<std::string_view>, std::vector<std::int64_t>, std::vector<std::uint64_t>,
                 std::vector<double>, std::vector<std::uint8_t>>
        values;
};

/// A table of results in memory, column by column. Later changes of the results don't change it.
class CResultsColumns {
 public:
    CResultsColumns(const CResults& results, EResultsTable table, const CRowOptions& options);

    std::size_t Rows() const noexcept { return m_rows; }
    const std::vector<CResultsColumn>& Columns() const noexcept { return m_columns; }

 private:
    void Add(std::span<const helpers::CCell> row);

    std::vector<CResultsColumn> m_columns;
    std::set<std::string, std::less<>> m_texts;
    std::size_t m_rows = 0;
};

}  // namespace vxfileio::results
