#include <cmath>
#include <numeric>

#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/PackedCurves.h"
#include "tools/vxfile/page/Sections.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

using CTimes = std::vector<std::int64_t>;

/// Returns the intervals between beats; nothing if a beat is earlier than the previous one.
std::optional<std::vector<std::uint64_t>> IntervalsOf(const CTimes& beats) {
    std::vector<std::uint64_t> intervals;
    for (std::size_t i = 1; i < beats.size(); ++i) {
        if (beats[i] < beats[i - 1]) return {};
        intervals.push_back(static_cast<std::uint64_t>(beats[i]) - static_cast<std::uint64_t>(beats[i - 1]));
    }
    return intervals;
}

/// Returns the first beat and the intervals, which are divided by their greatest common divisor to be short.
CJson BeatsOf(const CTimes& beats) {
    const auto intervals = IntervalsOf(beats);
    if (!intervals || beats.empty()) return nullptr;
    std::uint64_t unit = 0;
    for (const std::uint64_t interval : *intervals)
        unit = std::gcd(unit, interval);
    CJson list = CJson::array();
    for (const std::uint64_t interval : *intervals)
        list.push_back(unit == 0 ? 0 : interval / unit);
    return {{"first", beats.front()}, {"unit", unit}, {"intervals", std::move(list)}};
}

CJson AverageOf(const CResultsWell& well, CPackedCurves& curves) {
    if (!well.AverageExist()) return nullptr;
    CJson curve = curves.Add(well.Average);
    if (curve.is_null()) return curve;
    curve["begin"] = well.GetAveTimeStamp(0);
    curve["step"] = well.AverageTick;
    curve["count"] = well.AverageCount;
    return curve;
}

/// Returns the mean interval in ticks; "–" without an interval.
std::string MeanIntervalText(const CTimes& beats) {
    const auto intervals = IntervalsOf(beats);
    if (!intervals || intervals->empty()) return "–";
    const double span = static_cast<double>(beats.back()) - static_cast<double>(beats.front());
    return RoundedText(span / static_cast<double>(intervals->size()), 0);
}

void WriteOptions(CHtml& html, const std::string& id, const std::string& label, const std::vector<std::string>& texts) {
    html.Element("label", {}, [&] {
        html.Text(label + " ");
        html.Element("select", {{"id", id}}, [&] {
            for (std::size_t i = 0; i < texts.size(); ++i)
                html.Element("option", {{"value", std::to_string(i)}}, texts[i]);
        });
    });
}

void WriteChart(CHtml& html, const std::string& id, const std::string& title) {
    html.Element("figure", {}, [&] {
        html.Element("figcaption", {{"id", id + "-title"}}, title);
        html.Element(
            "div",
            {{"class", "chart"}, {"id", id}, {"tabindex", "0"}, {"role", "img"}, {"aria-labelledby", id + "-title"}},
            "");
    });
}

std::vector<std::string> LabelsOf(const CPlateValues& values) {
    std::vector<std::string> labels;
    for (const CWellPlace& well : values.wells)
        labels.push_back(well.label);
    return labels;
}

std::vector<std::string> NamesOf(const CPlateValues& values) {
    std::vector<std::string> names;
    for (const CRecordingLine& recording : values.recordings)
        names.push_back(recording.name);
    return names;
}

void WriteHeads(CHtml& html, const CPlateValues& values) {
    html.Element("tr", {}, [&] {
        html.Element("th", {{"scope", "col"}}, "Well");
        for (const CRecordingLine& recording : values.recordings)
            html.Element("th", {{"scope", "col"}}, recording.name);
    });
}

void WriteValueTable(CHtml& html, const CPlateValues& values, const CMeasure& measure, const std::string& id) {
    html.Element("table", {{"class", "numbers"}, {"id", id}}, [&] {
        html.Element("caption", {}, measure.Name() + (measure.unit.empty() ? "" : ", in " + measure.unit));
        WriteHeads(html, values);
        for (std::size_t well = 0; well < values.wells.size(); ++well) {
            html.Element("tr", {}, [&] {
                html.Element("th", {{"scope", "row"}}, values.wells[well].label);
                for (const auto& recording : measure.values) {
                    const CWellValue& value = recording[well];
                    const std::string word(WordOf(value.state));
                    const std::string text = value.value ? ExactText(*value.value) : "–";
                    html.Element("td", {{word.empty() ? "" : "class", "out"}, {word.empty() ? "" : "title", word}},
                                 text);
                }
            });
        }
    });
}

void WriteBeatTable(CHtml& html, const CPlateValues& values, const std::string& caption,
                    const std::function<std::string(const CTimes&)>& textOf) {
    html.Element("table", {{"class", "numbers"}}, [&] {
        html.Element("caption", {}, caption);
        WriteHeads(html, values);
        for (std::size_t well = 0; well < values.wells.size(); ++well) {
            html.Element("tr", {}, [&] {
                html.Element("th", {{"scope", "row"}}, values.wells[well].label);
                for (const auto& details : values.details)
                    html.Element("td", {},
                                 details[well] == nullptr ? "–" : textOf(details[well]->FPfastDetectionTimes));
            });
        }
    });
}

void WriteDetails(CHtml& html, const std::string& summary, const std::function<void()>& content) {
    html.Element("details", {}, [&] {
        html.Element("summary", {}, summary);
        html.Element("div", {{"class", "wide"}}, content);
    });
}

}  // namespace

void WriteWell(CHtml& html, const CPlateValues& values) {
    if (values.wells.empty() || values.recordings.empty()) return;
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "well"}}, [&] {
        html.Element("h2", {{"id", "well"}, {"aria-live", "polite"}}, "Well");
        html.Element("noscript", {}, [&] {
            html.Element("p", {}, "The charts of single wells need scripts. All numbers are in the tables below.");
        });
        html.Element("div", {{"class", "charts"}}, [&] {
            html.Element("p", {{"class", "bar"}}, [&] {
                WriteOptions(html, "well-choice", "Well", LabelsOf(values));
                html.Element("span", {{"id", "keys"}, {"class", "keys"}}, "");
            });
            html.Element("div", {{"class", "two"}}, [&] {
                WriteChart(html, "averages",
                           "Averaged beat at each dose, as stored in the results, over time from the beat in ticks");
                WriteChart(html, "intervals", "Interval between beats in ticks, by number of the beat");
            });
            if (!values.traces.empty()) {
                html.Element("p", {{"class", "bar"}}, [&] {
                    WriteOptions(html, "trace-choice", "Recorded signal at", NamesOf(values));
                    html.Element("span", {{"id", "trace-state"}, {"class", "quiet"}, {"aria-live", "polite"}}, "");
                });
                WriteChart(
                    html, "trace",
                    "Recorded signal over time in ticks since its beginning; the lines above are the detected beats");
            }
            html.Element("p", {{"class", "quiet small"}},
                         "Drag to zoom, double-click to see all. With the keyboard: arrows move, + and - zoom, 0 shows "
                         "all.");
            html.Element("div", {{"class", "wide"}, {"id", "well-numbers"}}, "");
        });
    });
}

void WriteValues(CHtml& html, const CPlateValues& values) {
    if (values.wells.empty() || values.recordings.empty()) return;
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "values"}}, [&] {
        html.Element("h2", {{"id", "values"}}, "All values");
        for (std::size_t i = 0; i < values.measures.size(); ++i) {
            WriteDetails(html, values.measures[i].Name(),
                         [&] { WriteValueTable(html, values, values.measures[i], "values-" + std::to_string(i)); });
        }
        WriteDetails(html, "Beats", [&] {
            WriteBeatTable(html, values, "Number of beats",
                           [](const CTimes& beats) { return std::to_string(beats.size()); });
            WriteBeatTable(html, values, "Mean interval between beats, in ticks", MeanIntervalText);
        });
    });
}

void WriteWellData(CHtml& html, const CPlateValues& values) {
    CJson measures = CJson::array();
    for (const CMeasure& measure : values.measures)
        measures.push_back(
            {{"response", measure.response}, {"normalized", measure.isNormalized}, {"unit", measure.unit}});
    CJson wells = CJson::array();
    for (const CWellPlace& well : values.wells)
        wells.push_back({{"label", well.label}, {"id", well.id}, {"inactive", well.isInactive}});
    CPackedCurves curves;
    CJson recordings = CJson::array();
    for (std::size_t i = 0; i < values.recordings.size(); ++i) {
        CJson details = CJson::array();
        for (std::size_t well = 0; well < values.wells.size(); ++well) {
            const CResultsWell* result = values.details[i][well];
            CJson detail = {{"average", result == nullptr ? CJson() : AverageOf(*result, curves)},
                            {"beats", result == nullptr ? CJson() : BeatsOf(result->FPfastDetectionTimes)}};
            if (!values.traces.empty()) detail["trace"] = curves.Add(values.traces[i][well]);
            details.push_back(std::move(detail));
        }
        recordings.push_back({{"name", values.recordings[i].name}, {"wells", std::move(details)}});
    }
    html.RawData("curves", curves.Text());
    html.Data("data",
              {{"measures", std::move(measures)}, {"wells", std::move(wells)}, {"recordings", std::move(recordings)}});
}

}  // namespace vxfile::page
