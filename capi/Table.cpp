#include <deque>
#include <functional>
#include <limits>
#include <variant>
#include <vector>

#include "capi/Document.h"
#include "vxfileio/base/EnumerationWords.h"

namespace vxfileio::capi {

namespace {

using CWholes = std::vector<std::int64_t>;
using CReals = std::vector<double>;
using CTexts = std::vector<std::string_view>;

/// One column: its name and its values, in the order of the rows.
struct CColumn {
    std::string_view name;
    std::variant<CWholes, CReals, CTexts> values;
};

/// The place of a row in the results.
struct CPlace {
    const CResultsTask& task;
    std::int64_t recording;
    std::uint64_t dose;
};

class CTable : public CObject {
 public:
    bool IsOpen() const noexcept override { return m_isOpen; }

    /// Fills the table. Throws unless `which` is one of `vx_table_kind`.
    void Open(const CResults& results, std::int32_t which);

    std::size_t Rows() const {
        const auto size = [](const auto& values) { return values.size(); };
        return m_columns.empty() ? 0 : std::visit(size, m_columns.front().values);
    }
    const std::vector<CColumn>& Columns() const noexcept { return m_columns; }

    /// Returns the values of a column. Throws if they are of another type.
    template <class Values>
    const Values& ValuesOf(std::int64_t column) const {
        const auto* const values = std::get_if<Values>(&m_columns[TakeIndex(column, m_columns.size())].values);
        if (values == nullptr) throw CFailed{VX_ERROR_TYPE, "The column has another type."};
        return *values;
    }

 private:
    using CWell = std::pair<const std::int32_t, CResultsWell>;

    void Define(std::initializer_list<CColumn> columns) { m_columns = columns; }

    /// @{
    /// Appends a value to the next column of the row.
    void Add(std::int64_t value) { Next<CWholes>().push_back(value); }
    void Add(double value) { Next<CReals>().push_back(value); }
    void Add(std::string_view value) { Next<CTexts>().push_back(value); }
    /// @}
    template <class Values>
    Values& Next() {
        return std::get<Values>(m_columns[m_next++ % m_columns.size()].values);
    }
    /// Keeps a text as long as the table.
    std::string_view Keep(const std::string& text) { return m_texts.emplace_back(text); }

    void AddPlace(const CPlace& place);
    void AddResponses(const CPlace& place, const CWell& well);
    void AddBeats(const CPlace& place, const CWell& well);
    void AddAverage(const CPlace& place, const CWell& well);
    void AddMeans(const CPlace& place, const CResultsRecording& recording);

    std::vector<CColumn> m_columns;
    std::deque<std::string> m_texts;
    std::size_t m_next = 0;
    bool m_isOpen = false;
};

std::int64_t Whole(std::uint64_t value) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    return std::cmp_greater(value, kMost) ? kMost : static_cast<std::int64_t>(value);
}

void CTable::Open(const CResults& results, std::int32_t which) {
    const CColumn task{"task", CTexts()};
    const CColumn recording{"recording", CWholes()};
    const CColumn dose{"dose", CWholes()};
    const CColumn well{"well", CWholes()};
    const CColumn label{"label", CTexts()};
    const CColumn response{"response", CTexts()};
    const CColumn time{"time", CWholes()};
    const CColumn value{"value", CReals()};
    void (CTable::*addWell)(const CPlace&, const CWell&) = nullptr;
    switch (which) {
        case VX_TABLE_RESPONSES:
            Define({task, recording, dose, well, label, response, value, {"normalized", CWholes()}});
            addWell = &CTable::AddResponses;
            break;
        case VX_TABLE_MEANS:
            Define({task, recording, dose, response, {"mean", CReals()}, {"sd", CReals()}, {"wells", CWholes()}});
            break;
        case VX_TABLE_BEATS:
            Define({task, recording, dose, well, label, {"beat", CWholes()}, time});
            addWell = &CTable::AddBeats;
            break;
        case VX_TABLE_AVERAGES:
            Define({task, recording, dose, well, label, {"sample", CWholes()}, time, value});
            addWell = &CTable::AddAverage;
            break;
        default:
            throw CFailed{VX_ERROR_ARGUMENT, "The table is unknown."};
    }
    for (const auto& [key, content] : results.Tasks) {
        std::int64_t number = 0;
        for (const CResultsRecording& entry : content.Recordings) {
            const CPlace place{content, number++, entry.Dose};
            if (addWell == nullptr) AddMeans(place, entry);
            for (const CWell& each : entry.Wells) {
                if (addWell != nullptr) (this->*addWell)(place, each);
            }
        }
    }
    m_isOpen = true;
}

void CTable::AddPlace(const CPlace& place) {
    Add(Keep(place.task.TaskName));
    Add(place.recording);
    Add(Whole(place.dose));
}

void CTable::AddResponses(const CPlace& place, const CWell& well) {
    for (const bool isNormalized : {false, true}) {
        for (const auto& [type, response] : isNormalized ? well.second.NormalizedResponses : well.second.Responses) {
            AddPlace(place);
            Add(std::int64_t{well.first});
            Add(Keep(well.second.WellLabel));
            Add(Keep(response.Label));
            Add(response.Value);
            Add(std::int64_t{isNormalized ? 1 : 0});
        }
    }
}

void CTable::AddBeats(const CPlace& place, const CWell& well) {
    std::int64_t beat = 0;
    const std::string_view label = Keep(well.second.WellLabel);
    for (const std::int64_t time : well.second.FPfastDetectionTimes) {
        AddPlace(place);
        Add(std::int64_t{well.first});
        Add(label);
        Add(beat++);
        Add(time);
    }
}

void CTable::AddAverage(const CPlace& place, const CWell& well) {
    const std::string_view label = Keep(well.second.WellLabel);
    for (std::uint32_t sample = 0; sample < well.second.GetAveSamples(); ++sample) {
        AddPlace(place);
        Add(std::int64_t{well.first});
        Add(label);
        Add(std::int64_t{sample});
        Add(well.second.GetAveTimeStamp(sample));
        Add(well.second.Average[sample]);
    }
}

void CTable::AddMeans(const CPlace& place, const CResultsRecording& recording) {
    for (const auto& [type, mean] : recording.NormalizedResponses) {
        AddPlace(place);
        Add(Keep(mean.Label));
        Add(mean.normMean);
        Add(mean.normStdDev);
        Add(std::int64_t{mean.Samples});
    }
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_table_open(vx_table** out, vx_document* results, int32_t table) {
    return Make<CTable>(out, [&](CTable& object) {
        Use<CDocument>(results, [&](CDocument& document) { object.Open(document.Results(), table); });
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
    return With<CTable>(table, [&](CTable& object) {
        PutText(object.Columns()[TakeIndex(column, object.Columns().size())].name, buffer, size);
    });
}

int VX_CALL vx_table_get_type(vx_table* table, int64_t column, int32_t* type) {
    return With<CTable>(table, [&](CTable& object) {
        constexpr std::int32_t kTypes[] = {VX_TYPE_INTEGER, VX_TYPE_DOUBLE, VX_TYPE_TEXT};
        Put(type, kTypes[object.Columns()[TakeIndex(column, object.Columns().size())].values.index()]);
    });
}

int VX_CALL vx_table_get_int64s(vx_table* table, int64_t column, int64_t* values, int64_t* count) {
    return With<CTable>(table, [&](CTable& object) { PutArray(object.ValuesOf<CWholes>(column), values, count); });
}

int VX_CALL vx_table_get_doubles(vx_table* table, int64_t column, double* values, int64_t* count) {
    return With<CTable>(table, [&](CTable& object) { PutArray(object.ValuesOf<CReals>(column), values, count); });
}

int VX_CALL vx_table_get_text(vx_table* table, int64_t column, int64_t row, char* buffer, int64_t* size) {
    return With<CTable>(table, [&](CTable& object) {
        const auto& texts = object.ValuesOf<CTexts>(column);
        PutText(texts[TakeIndex(row, texts.size())], buffer, size);
    });
}
