#include "vxfileio/results/ResultsColumns.h"

#include <cmath>
#include <functional>
#include <type_traits>

namespace vxfileio::results {

namespace {

using helpers::CCell;
using enum helpers::EColumnType;

/// Makes an empty column with values of its type.
CResultsColumn Empty(const helpers::CColumn& column) {
    switch (column.type) {
        case Whole:
            return {column, std::vector<std::int64_t>()};
        case Count:
            return {column, std::vector<std::uint64_t>()};
        case Real:
            return {column, std::vector<double>()};
        case Flag:
            return {column, std::vector<std::uint8_t>()};
        case Text:
            break;
    }
    return {column, std::vector<std::string_view>()};
}

/// Returns what takes the place of a missing value.
template <class Value>
Value Missing() {
    if constexpr (std::is_same_v<Value, std::int64_t>) return kMissingWhole;
    if constexpr (std::is_same_v<Value, double>) return std::numeric_limits<double>::quiet_NaN();
    return Value();
}

/// Returns a cell's value; a flag as 0 or 1.
template <class Value>
Value ValueOr(const CCell& cell, Value missing) {
    if constexpr (std::is_same_v<Value, std::uint8_t>) {
        const auto* const flag = std::get_if<bool>(&cell);
        return flag == nullptr ? missing : static_cast<Value>(*flag ? 1 : 0);
    } else {
        const auto* const value = std::get_if<Value>(&cell);
        return value == nullptr ? missing : *value;
    }
}

}  // namespace

CResultsColumns::CResultsColumns(const CResults& results, EResultsTable table, const CRowOptions& options) {
    for (const auto& column : ColumnsOf(table, options.analyzer != nullptr, options.ticksPerSecond != 0))
        m_columns.push_back(Empty(column));
    CResultsRows(table, options, [this](std::span<const CCell> row) { Add(row); }).PutAll(results);
}

void CResultsColumns::Add(std::span<const CCell> row) {
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        std::visit(
            [&]<class Value>(std::vector<Value>& values) {
                const Value value = ValueOr(row[i], Missing<Value>());
                if constexpr (std::is_same_v<Value, std::string_view>) {
                    const auto known = m_texts.find(value);
                    values.push_back(known != m_texts.end() ? *known : *m_texts.emplace(value).first);
                } else {
                    values.push_back(value);
                }
            },
            m_columns[i].values);
    }
    ++m_rows;
}

}  // namespace vxfileio::results
