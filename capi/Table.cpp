#include <limits>
#include <optional>
#include <variant>
#include <vector>

#include "capi/Document.h"
#include "vxfileio/results/ResultsColumns.h"

namespace vxfileio::capi {

namespace {

using results::CResultsColumn;
using results::EResultsTable;

class CTable final : public CObject {
 public:
    bool IsOpen() const noexcept override { return m_content.has_value(); }

    void Open(const CResults& results, EResultsTable table) {
        m_content.emplace(results, table, results::CRowOptions());
    }

    std::size_t Rows() const noexcept { return m_content->Rows(); }
    const std::vector<CResultsColumn>& Columns() const noexcept { return m_content->Columns(); }

    const CResultsColumn& At(std::int64_t column) const { return Columns()[TakeIndex(column, Columns().size())]; }

    /// Returns the values of a column. Throws if they are of another type.
    template <class Value>
    const std::vector<Value>& ValuesAt(std::int64_t column) const {
        const auto* const values = std::get_if<std::vector<Value>>(&At(column).values);
        if (values == nullptr) RefuseType();
        return *values;
    }

    [[noreturn]] static void RefuseType() { throw CFailed{VX_ERROR_TYPE, "The column has another type."}; }

 private:
    std::optional<results::CResultsColumns> m_content;
};

EResultsTable TakeTable(std::int32_t table) {
    constexpr EResultsTable kTables[] = {EResultsTable::Responses, EResultsTable::Means, EResultsTable::Beats,
                                         EResultsTable::Averages};
    Require(table >= 0 && std::cmp_less(table, std::size(kTables)), "The table is unknown.");
    return kTables[table];
}

std::int32_t TypeOf(const CResultsColumn& column) {
    using enum helpers::EColumnType;
    if (column.column.type == Text) return VX_TYPE_TEXT;
    return column.column.type == Real ? VX_TYPE_DOUBLE : VX_TYPE_INTEGER;
}

/// Stores whole numbers; those above 2^63 - 1 become that number.
void PutWholes(const CResultsColumn& column, std::int64_t* values, std::int64_t* count) {
    std::visit(
        [&]<class Value>(const std::vector<Value>& from) {
            if constexpr (std::is_integral_v<Value>) {
                FillArray(values, count, from.size(), [&](std::span<std::int64_t> to) {
                    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
                    std::transform(from.begin(), from.end(), to.begin(), [](Value value) {
                        return std::cmp_greater(value, kMost) ? kMost : static_cast<std::int64_t>(value);
                    });
                });
            } else {
                CTable::RefuseType();
            }
        },
        column.values);
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_table_open(vx_table** out, vx_document* results, int32_t table) {
    return Make<CTable>(out, [&](CTable& object) {
        Use<CDocument>(results, [&](CDocument& document) { object.Open(document.Results(), TakeTable(table)); });
    });
}

int VX_CALL vx_table_get_size(vx_table* table, int64_t* rows, int64_t* columns) {
    return With<CTable>(table, [&](CTable& object) {
        Require(rows != nullptr, "The place for the rows is NULL.");
        Put(columns, static_cast<std::int64_t>(object.Columns().size()));
        Put(rows, static_cast<std::int64_t>(object.Rows()));
    });
}

int VX_CALL vx_table_get_name(vx_table* table, int64_t column, char* buffer, int64_t* size) {
    return With<CTable>(table, [&](CTable& object) { PutText(object.At(column).column.name, buffer, size); });
}

int VX_CALL vx_table_get_type(vx_table* table, int64_t column, int32_t* type) {
    return With<CTable>(table, [&](CTable& object) { Put(type, TypeOf(object.At(column))); });
}

int VX_CALL vx_table_get_int64s(vx_table* table, int64_t column, int64_t* values, int64_t* count) {
    return With<CTable>(table, [&](CTable& object) { PutWholes(object.At(column), values, count); });
}

int VX_CALL vx_table_get_doubles(vx_table* table, int64_t column, double* values, int64_t* count) {
    return With<CTable>(table, [&](CTable& object) { PutArray(object.ValuesAt<double>(column), values, count); });
}

int VX_CALL vx_table_get_text(vx_table* table, int64_t column, int64_t row, char* buffer, int64_t* size) {
    return With<CTable>(table, [&](CTable& object) {
        const auto& texts = object.ValuesAt<std::string_view>(column);
        PutText(texts[TakeIndex(row, texts.size())], buffer, size);
    });
}
