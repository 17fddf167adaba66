#include <algorithm>
#include <cmath>

#include "tools/vxfile/page/Chart.h"
#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/Sections.h"

namespace vxfile::page {

namespace {

/// Returns the axis for the values and means of some recordings.
CValueAxis AxisFor(const CMeasure& measure, const std::vector<std::size_t>& lines) {
    double least = measure.least;
    double greatest = measure.greatest;
    for (const std::size_t line : lines) {
        const auto& mean = measure.means[line];
        if (!mean) continue;
        const double deviation = mean->deviation.value_or(0.0);
        if (!std::isfinite(mean->mean) || !std::isfinite(deviation)) continue;
        least = std::min(least, mean->mean - deviation);
        greatest = std::max(greatest, mean->mean + deviation);
    }
    return {least, greatest};
}

std::vector<CRecordingLine> Chosen(const CPlateValues& values, const std::vector<std::size_t>& lines) {
    std::vector<CRecordingLine> recordings;
    recordings.reserve(lines.size());
    for (const std::size_t line : lines)
        recordings.push_back(values.recordings[line]);
    return recordings;
}

/// The chart of one measure over the recordings of one task.
class CDoseChart {
 public:
    CDoseChart(CHtml& html, const CPlateValues& values, const CMeasure& measure, const std::vector<std::size_t>& lines)
        : m_html(html),
          m_values(values),
          m_measure(measure),
          m_lines(lines),
          m_doses(Chosen(values, lines)),
          m_axis(AxisFor(measure, lines)) {}

    void Write(const std::string& id) const {
        const std::string box = "0 0 " + RoundedText(CChartArea::kWidth, 0) + ' ' + RoundedText(CChartArea::kHeight, 0);
        m_html.Element("svg",
                       {{"viewBox", box},
                        {"role", "img"},
                        {"aria-labelledby", id + "-title"},
                        {"class", "curve"},
                        {"data-lines", LinesText()},
                        {"data-x", PlacesText()},
                        {"data-offset", ExactText(m_axis.Offset())},
                        {"data-factor", ExactText(m_axis.Factor())}},
                       [&] {
                           m_html.Element("title", {{"id", id + "-title"}}, TitleText());
                           WriteValueAxis();
                           WriteDoseAxis();
                           WriteDots();
                           WriteMeans();
                       });
    }

 private:
    std::string TitleText() const {
        return m_measure.Name() + " by dose: mean of the wells, standard deviation, and a dot for each well";
    }

    double PlaceOf(std::size_t line) const { return m_doses.PlaceOf(m_values.recordings[line].dose); }

    std::string LinesText() const {
        std::string text;
        for (const std::size_t line : m_lines)
            text += (text.empty() ? "" : " ") + std::to_string(line);
        return text;
    }

    std::string PlacesText() const {
        std::string text;
        for (const std::size_t line : m_lines)
            text += (text.empty() ? "" : " ") + PlaceText(PlaceOf(line));
        return text;
    }

    void WritePath(std::string_view style, const std::string& path) const {
        if (!path.empty()) m_html.Element("path", {{"class", std::string(style)}, {"d", path}}, "");
    }

    void WriteLabel(double x, double y, std::string_view style, const std::string& text) const {
        m_html.Element("text", {{"x", PlaceText(x)}, {"y", PlaceText(y)}, {"class", std::string(style)}}, text);
    }

    void WriteValueAxis() const {
        std::string grid;
        for (const double mark : m_axis.Marks()) {
            const double place = m_axis.PlaceOf(mark);
            grid += 'M' + PlaceText(CChartArea::kLeft) + ' ' + PlaceText(place) + 'H' + PlaceText(CChartArea::kRight);
            WriteLabel(CChartArea::kLeft - 8, place + 4, "end", m_axis.TextOf(mark));
        }
        WritePath("grid", grid);
        const double middle = (CChartArea::kTop + CChartArea::kBottom) / 2;
        const std::string turn = "rotate(-90 14 " + PlaceText(middle) + ")";
        const std::string unit = m_measure.unit.empty() ? "" : " (" + m_measure.unit + ")";
        m_html.Element("text", {{"x", "14"}, {"y", PlaceText(middle)}, {"class", "middle strong"}, {"transform", turn}},
                       m_measure.response + unit);
    }

    /// Labels of doses that are close to the last one are left out.
    void WriteDoseAxis() const {
        constexpr double kRoom = 40;
        double last = -kRoom;
        for (const std::size_t line : m_lines) {
            const double place = PlaceOf(line);
            if (std::abs(place - last) < kRoom) continue;
            last = place;
            const auto& mean = m_measure.means[line];
            WriteLabel(place, CChartArea::kBottom + 20, "middle small", m_values.recordings[line].doseText);
            WriteLabel(place, CChartArea::kBottom + 36, "middle small",
                       mean ? "n=" + std::to_string(mean->wells) : "–");
        }
        if (m_doses.HasControl())
            WritePath("axis-break", 'M' + PlaceText(m_doses.Begin()) + ' ' + PlaceText(CChartArea::kTop) + 'V' +
                                        PlaceText(CChartArea::kBottom));
    }

    /// Dots of neighbouring wells are drawn side by side, so that equal values stay visible.
    void WriteDots() const {
        std::string dots;
        for (const std::size_t line : m_lines) {
            for (std::size_t well = 0; well < m_values.wells.size(); ++well) {
                const CWellValue& value = m_measure.values[line][well];
                if (!value.Counts()) continue;
                const double aside = 1.3 * (static_cast<double>(well * 7 % 13) - 6);
                dots += 'M' + PlaceText(PlaceOf(line) + aside) + ' ' + PlaceText(m_axis.PlaceOf(*value.value)) + "h0";
            }
        }
        WritePath("dots", dots);
    }

    /// The line doesn't join the control and the first dose: there is no distance between 0 and a dose.
    void WriteMeans() const {
        std::string curve;
        std::string spread;
        std::string marks;
        bool isJoined = false;
        for (const std::size_t line : m_lines) {
            const auto& mean = m_measure.means[line];
            const bool isThere = mean && std::isfinite(mean->mean);
            if (isThere) {
                const std::string x = PlaceText(PlaceOf(line));
                const std::string point = x + ' ' + PlaceText(m_axis.PlaceOf(mean->mean));
                curve += (isJoined ? 'L' : 'M') + point;
                marks += 'M' + point + "h0";
                if (mean->deviation && std::isfinite(*mean->deviation))
                    spread += 'M' + x + ' ' + PlaceText(m_axis.PlaceOf(mean->mean - *mean->deviation)) + 'V' +
                              PlaceText(m_axis.PlaceOf(mean->mean + *mean->deviation));
            }
            isJoined = isThere && !m_values.recordings[line].IsControl();
        }
        WritePath("spread", spread);
        WritePath("mean", curve);
        WritePath("marks", marks);
    }

    CHtml& m_html;
    const CPlateValues& m_values;
    const CMeasure& m_measure;
    const std::vector<std::size_t>& m_lines;
    CDoseAxis m_doses;
    CValueAxis m_axis;
};

/// Returns the recordings of each task, by dose.
std::vector<std::vector<std::size_t>> LinesByTask(const CPlateValues& values) {
    std::map<std::string, std::vector<std::size_t>> tasks;
    for (std::size_t i = 0; i < values.recordings.size(); ++i)
        tasks[values.recordings[i].task].push_back(i);
    std::vector<std::vector<std::size_t>> lines;
    for (auto& [name, task] : tasks) {
        std::ranges::stable_sort(task, {}, [&](std::size_t line) { return values.recordings[line].dose; });
        lines.push_back(task);
    }
    return lines;
}

void WriteMeanTable(CHtml& html, const CPlateValues& values, const CMeasure& measure) {
    html.Element("table", {{"class", "numbers means"}}, [&] {
        html.Element("caption", {},
                     measure.Name() + (measure.hasStoredMeans ? ": means stored in the results"
                                                              : ": means of the wells that count"));
        html.Element("tr", {}, [&] {
            for (const char* head : {"Dose", "Mean", "SD", "Wells"})
                html.Element("th", {{"scope", "col"}}, head);
        });
        for (std::size_t i = 0; i < values.recordings.size(); ++i) {
            const auto& mean = measure.means[i];
            html.Element("tr", {}, [&] {
                html.Element("th", {{"scope", "row"}}, values.recordings[i].name);
                html.Element("td", {}, mean ? ExactText(mean->mean) : "–");
                html.Element("td", {}, mean && mean->deviation ? ExactText(*mean->deviation) : "–");
                html.Element("td", {}, mean ? std::to_string(mean->wells) : "0");
            });
        }
    });
}

}  // namespace

void WriteDoseResponses(CHtml& html, const CPlateValues& values) {
    if (values.measures.empty()) return;
    const auto tasks = LinesByTask(values);
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "doses"}}, [&] {
        html.Element("h2", {{"id", "doses"}}, "Dose-response");
        for (std::size_t i = 0; i < values.measures.size(); ++i) {
            const std::string id = "curve-" + std::to_string(i);
            html.Element("div", {{"class", "choice"}, {"id", id}}, [&] {
                for (std::size_t task = 0; task < tasks.size(); ++task) {
                    if (tasks.size() > 1) html.Element("h3", {}, values.recordings[tasks[task].front()].task);
                    CDoseChart(html, values, values.measures[i], tasks[task]).Write(id + "-" + std::to_string(task));
                }
                html.Element("details", {}, [&] {
                    html.Element("summary", {}, "Numbers");
                    WriteMeanTable(html, values, values.measures[i]);
                });
            });
        }
        html.Element("p", {{"class", "quiet small"}},
                     "Line: mean of the wells. Bars: one standard deviation. Dots: wells. Thin line: the chosen well.");
    });
}

}  // namespace vxfile::page
