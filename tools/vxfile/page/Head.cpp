#include <algorithm>

#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/Sections.h"

namespace vxfile::page {

namespace {

void WriteMean(CHtml& html, const std::optional<CMean>& mean, int decimals) {
    if (!mean) {
        html.Element("td", {{"class", "missing"}}, "–");
        return;
    }
    html.Element("td", {}, [&] {
        html.Element("b", {}, RoundedText(mean->mean, decimals));
        if (!mean->deviation) return;
        html.Text(" ");
        html.Element("span", {{"class", "quiet"}}, "± " + RoundedText(*mean->deviation, decimals));
    });
}

/// Writes one button of a group, of which one is pressed.
void WriteRadio(CHtml& html, const std::string& group, const std::string& value, const std::string& text) {
    html.Element("label", {}, [&] {
        html.Void("input", {{"type", "radio"}, {"name", group}, {"value", value}});
        html.Element("span", {}, text);
    });
}

void WriteGroup(CHtml& html, std::string_view legend, const std::function<void()>& radios) {
    html.Element("fieldset", {}, [&] {
        html.Element("legend", {}, legend);
        html.Element("div", {{"class", "buttons"}}, radios);
    });
}

/// Returns what a row of means is about.
std::string RowText(const CMeasure& measure) {
    return measure.response + (measure.isNormalized && !measure.hasStoredMeans ? " (computed)" : "");
}

/// Writes a row for each response, a column for each dose.
void WriteMeans(CHtml& html, const CPlateValues& values, bool isNormalized) {
    html.Element("table", {{"class", "numbers overview"}}, [&] {
        html.Element("caption", {},
                     isNormalized ? "Mean of the wells ± standard deviation, normalised"
                                  : "Mean of the wells ± standard deviation, as measured");
        html.Element("tr", {}, [&] {
            html.Element("td", {}, "");
            for (const CRecordingLine& recording : values.recordings)
                html.Element("th", {{"scope", "col"}}, recording.name);
        });
        for (const CMeasure& measure : values.measures) {
            if (measure.isNormalized != isNormalized) continue;
            html.Element("tr", {}, [&] {
                html.Element("th", {{"scope", "row"}}, RowText(measure));
                for (const auto& mean : measure.means)
                    WriteMean(html, mean, DecimalsFor(measure.greatest));
            });
        }
    });
}

}  // namespace

void WriteHead(CHtml& html, const CPlateValues& values) {
    html.Element("header", {}, [&] {
        html.Element("h1", {}, [&] {
            html.Text(values.compound);
            const std::string where = values.plate.empty() ? "" : " on " + values.plate;
            html.Element("span", {{"class", "quiet"}}, where + " (" + values.layout + ")");
        });
        html.Element("dl", {{"class", "facts"}}, [&] {
            for (const auto& fact : values.facts) {
                html.Element("div", {}, [&] {
                    html.Element("dt", {}, fact.first);
                    html.Element("dd", {}, fact.second);
                });
            }
        });
        if (values.notes.empty()) return;
        html.Element("ul", {{"class", "notes"}, {"aria-label", "Notes"}}, [&] {
            for (const std::string& note : values.notes)
                html.Element("li", {}, note);
        });
    });
}

void WriteOverview(CHtml& html, const CPlateValues& values) {
    if (values.measures.empty()) {
        html.Element("p", {{"class", "card"}}, "The results have no responses.");
        return;
    }
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "overview"}}, [&] {
        html.Element("h2", {{"id", "overview"}}, "Overview");
        html.Element("div", {{"class", "wide"}},
                     [&] { WriteMeans(html, values, std::ranges::any_of(values.measures, &CMeasure::isNormalized)); });
    });
}

void WriteChoices(CHtml& html, const CPlateValues& values) {
    if (values.measures.empty()) return;
    html.Element("form", {{"class", "card choices"}, {"id", "choices"}, {"aria-label", "What is shown"}}, [&] {
        WriteGroup(html, "Response", [&] {
            std::string last;
            for (const CMeasure& measure : values.measures) {
                if (measure.response != last) WriteRadio(html, "response", measure.response, measure.response);
                last = measure.response;
            }
        });
        WriteGroup(html, "Value", [&] {
            WriteRadio(html, "kind", "1", "normalised");
            WriteRadio(html, "kind", "0", "as measured");
        });
        WriteGroup(html, "Dose", [&] {
            for (std::size_t i = 0; i < values.recordings.size(); ++i)
                WriteRadio(html, "dose", std::to_string(i), values.recordings[i].name);
        });
    });
}

}  // namespace vxfile::page
