#include <algorithm>

#include "tools/vxfile/page/Colours.h"
#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/Sections.h"

namespace vxfile::page {

namespace {

/// The wells of the plate by row and column, and those without a place.
struct CPlan {
    std::vector<std::vector<std::optional<std::size_t>>> rows;
    std::vector<std::size_t> others;
};

CPlan PlanOf(const CPlateValues& values) {
    CPlan plan;
    plan.rows.assign(values.rowLabels.size(), std::vector<std::optional<std::size_t>>(values.columnLabels.size()));
    for (std::size_t i = 0; i < values.wells.size(); ++i) {
        const CWellPlace& well = values.wells[i];
        if (well.row) {
            plan.rows[*well.row][well.column] = i;
        } else {
            plan.others.push_back(i);
        }
    }
    return plan;
}

/// Writes the maps of one measure.
class CHeatMap {
 public:
    CHeatMap(CHtml& html, const CPlateValues& values, const CPlan& plan, const CMeasure& measure)
        : m_html(html),
          m_values(values),
          m_plan(plan),
          m_measure(measure),
          m_decimals(DecimalsFor(std::max(std::abs(measure.least), std::abs(measure.greatest)))) {}

    void Write(const std::string& id, std::size_t recording) const {
        m_html.Element("table", {{"class", "plate choice"}, {"id", id}}, [&] {
            m_html.Element("caption", {}, m_measure.Name() + ", " + m_values.recordings[recording].name + UnitText());
            if (!m_values.columnLabels.empty()) WriteColumns();
            for (std::size_t row = 0; row < m_plan.rows.size(); ++row)
                WriteRow(m_plan.rows[row], row, recording);
            WriteOthers(recording);
        });
    }

    void WriteLegend(const std::string& id) const {
        m_html.Element("div", {{"class", "legend choice"}, {"id", id}}, [&] {
            m_html.Element("span", {}, RoundedText(m_measure.least, m_decimals));
            m_html.Element("span", {{"class", "scale"}, {"role", "img"}, {"aria-label", "from dark blue to yellow"}},
                           [&] {
                               for (std::size_t i = 0; i < kColours; ++i)
                                   m_html.Element("i", {{"class", "c" + std::to_string(i)}}, "");
                           });
            m_html.Element("span", {}, RoundedText(m_measure.greatest, m_decimals) + UnitText());
        });
    }

 private:
    std::string UnitText() const { return m_measure.unit.empty() ? "" : " " + m_measure.unit; }

    void WriteColumns() const {
        m_html.Element("tr", {}, [&] {
            m_html.Element("td", {}, "");
            for (const std::string& label : m_values.columnLabels)
                m_html.Element("th", {{"scope", "col"}}, label);
        });
    }

    void WriteRow(const std::vector<std::optional<std::size_t>>& wells, std::size_t row, std::size_t recording) const {
        m_html.Element("tr", {}, [&] {
            m_html.Element("th", {{"scope", "row"}}, m_values.rowLabels[row]);
            for (std::size_t column = 0; column < wells.size(); ++column) {
                if (wells[column]) {
                    WriteCell(*wells[column], recording);
                } else {
                    WriteNone(m_values.rowLabels[row] + m_values.columnLabels[column]);
                }
            }
        });
    }

    void WriteOthers(std::size_t recording) const {
        const std::size_t perRow = std::max<std::size_t>(12, m_values.columnLabels.size());
        for (std::size_t first = 0; first < m_plan.others.size(); first += perRow) {
            m_html.Element("tr", {}, [&] {
                m_html.Element("th", {{"scope", "row"}, {"title", "wells without a place on the plate"}}, "other");
                for (std::size_t i = first; i < std::min(first + perRow, m_plan.others.size()); ++i)
                    WriteCell(m_plan.others[i], recording);
            });
        }
    }

    void WriteNone(const std::string& label) const {
        m_html.Element("td", {{"class", "none"}}, [&] { m_html.Element("i", {}, label); });
    }

    void WriteCell(std::size_t well, std::size_t recording) const {
        const CWellValue& value = m_measure.values[recording][well];
        const std::string word(WordOf(value.state));
        std::string style = word.empty() ? "missing" : "out";
        if (value.Counts()) style = ColourOf(*value.value, m_measure.least, m_measure.greatest);
        m_html.Element("td", {{"class", style}, {"data-w", std::to_string(well)}}, [&] {
            m_html.Element("i", {}, m_values.wells[well].label);
            m_html.Text(value.value ? " " + RoundedText(*value.value, m_decimals) : " –");
            if (!word.empty()) m_html.Element("i", {}, word);
        });
    }

    CHtml& m_html;
    const CPlateValues& m_values;
    const CPlan& m_plan;
    const CMeasure& m_measure;
    int m_decimals;
};

}  // namespace

std::string_view WordOf(EState state) {
    switch (state) {
        case EState::Deselected:
            return "deselected";
        case EState::NotAnalysed:
            return "not analysed";
        case EState::Inactive:
            return "inactive";
        default:
            return {};
    }
}

void WriteHeatMaps(CHtml& html, const CPlateValues& values) {
    if (values.measures.empty()) return;
    const CPlan plan = PlanOf(values);
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "plate"}}, [&] {
        html.Element("h2", {{"id", "plate"}}, "Plate");
        for (std::size_t i = 0; i < values.measures.size(); ++i) {
            const CHeatMap map(html, values, plan, values.measures[i]);
            const std::string number = std::to_string(i);
            for (std::size_t recording = 0; recording < values.recordings.size(); ++recording)
                map.Write("map-" + number + "-" + std::to_string(recording), recording);
            map.WriteLegend("legend-" + number);
        }
        html.Element("p", {{"class", "quiet small"}},
                     "Colours cover the values of all doses. – is a well without a value. Values that are deselected, "
                     "not analysed or of inactive wells have no colour and don't count. Grey places aren't in the "
                     "results.");
    });
}

}  // namespace vxfile::page
